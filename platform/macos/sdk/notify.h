#pragma once

#include <stdint.h>

extern "C" {
uint32_t notify_register_check(const char* name, int* out_token);
uint32_t notify_get_state(int token, uint64_t* state64);
uint32_t notify_cancel(int token);
}
