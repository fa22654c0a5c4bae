// Opens the libraries that the add-on opens, says so, and waits: what any program of this size must
// take to start.

#include <unistd.h>

int main() {
    constexpr char kReady[] = "ready\n";
    if (write(STDERR_FILENO, kReady, sizeof kReady - 1) < 0) return 1;
    pause();
    return 0;
}
