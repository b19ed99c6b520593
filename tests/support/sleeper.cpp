#include <windows.h>

// A program for tests to end: `sleeper EVENT` signals the event of that name, and then lasts a
// minute at most, should its test be gone.
int main(int, char** arguments) {
    if (const HANDLE running = OpenEventA(EVENT_MODIFY_STATE, FALSE, arguments[1]))
        SetEvent(running);
    Sleep(60000);
    return 1;
}
