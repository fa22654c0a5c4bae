// What the compiler for macOS brings along as <objc/objc.h>, for running on Linux.
#pragma once

#include <cstddef>
#include <cstdint>

typedef bool BOOL;  // as on arm64
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr
#define Nil nullptr
