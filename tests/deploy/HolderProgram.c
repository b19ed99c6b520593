/* Says that it runs, and does so until its input ends: its file is in use for as long. */

#include <stdio.h>

int main(void) {
    puts("running");
    fflush(stdout);
    while (getchar() != EOF) {
    }
    return 0;
}
