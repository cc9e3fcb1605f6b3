/* Uses the DLL as a host does. 0, or the number of the line that went wrong. */
int RunClient(void);
