// Signals the event that its argument names, then runs until it is ended, or, should a test have
// left it behind, for one minute.

#include <windows.h>

int main(int count, char** arguments) {
    if (count > 1)
        SetEvent(OpenEventA(EVENT_MODIFY_STATE, FALSE, arguments[1]));
    Sleep(60'000);
}
