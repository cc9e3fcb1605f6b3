/* Stands in for Microsoft's headers where there are none: what the C sample takes of <stdio.h>. */
#pragma once
#include <stddef.h>

typedef struct FILE FILE;
__declspec(dllimport) FILE* fopen(const char* name, const char* mode);
__declspec(dllimport) size_t fread(void* target, size_t size, size_t count, FILE* file);
__declspec(dllimport) int fclose(FILE* file);
__declspec(dllimport) int printf(const char* format, ...);
