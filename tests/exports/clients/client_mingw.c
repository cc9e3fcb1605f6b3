#include "client.h"

#include <stdio.h>

int main(void) {
    const int line = RunClient();
    if (line != 0) printf("client.c, line %d went wrong\n", line);
    return line != 0;
}
