#pragma once

#include <stddef.h>

typedef const struct __SecRandom* SecRandomRef;

extern "C" {
extern const SecRandomRef kSecRandomDefault;
int SecRandomCopyBytes(SecRandomRef rnd, size_t count, void* bytes);
}
