/* What the C sample takes of <windows.h>. */
#pragma once

typedef void* HGLOBAL;
__declspec(dllimport) HGLOBAL __stdcall GlobalHandle(const void* address);
__declspec(dllimport) int __stdcall GlobalUnlock(HGLOBAL block);
__declspec(dllimport) HGLOBAL __stdcall GlobalFree(HGLOBAL block);
