// Opens the add-on's libraries, prints a line and waits: the least time in which the add-on can
// start.

#include <unistd.h>

int main() {
    constexpr char kReady[] = "ready\n";
    if (write(STDERR_FILENO, kReady, sizeof kReady - 1) < 0) return 1;
    pause();
    return 0;
}
