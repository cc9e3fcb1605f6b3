/* What the C sample takes of <string.h>. */
#pragma once
#include <stddef.h>

void* memcpy(void* target, const void* source, size_t length);
