/* What Microsoft's run-time library does before and after main. */
__declspec(dllimport) void exit(int code);
int main(void);

/* The compiler refers to this name where floating-point numbers are used. */
int _fltused = 0;

void mainCRTStartup(void) { exit(main()); }
