// What the C library of macOS names or declares otherwise than that of Linux. Included before every
// adapter that runs here.
#pragma once

#include <fcntl.h>
#include <pthread.h>
#include <stdio.h>
#include <sys/stat.h>

inline int pthread_setname_np(const char* name) { return pthread_setname_np(pthread_self(), name); }

#define RENAME_SWAP 2u
#define RENAME_EXCL 4u
inline int renamex_np(const char* from, const char* to, unsigned int how) {
    return renameat2(AT_FDCWD, from, AT_FDCWD, to,
                     how == RENAME_SWAP ? RENAME_EXCHANGE : RENAME_NOREPLACE);
}
