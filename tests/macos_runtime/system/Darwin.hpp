// What the C library of macOS names or declares otherwise than that of Linux. Included before every
// adapter that runs here.
#pragma once

#include <pthread.h>
#include <sys/stat.h>

#define st_mtimespec st_mtim

inline int pthread_setname_np(const char* name) { return pthread_setname_np(pthread_self(), name); }
