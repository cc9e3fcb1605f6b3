/* A program without any C run-time library. */
#include "client.h"

__declspec(dllimport) __declspec(noreturn) void __stdcall ExitProcess(unsigned int code);

/* Microsoft's compiler and those that follow it refer to this name where floating-point numbers are used. */
int _fltused = 0;

void Start(void) { ExitProcess((unsigned int)RunClient()); }
