// Part of every test binary. With LUM_TEST_LOCALE set, its tests run as in a program that has chosen that locale,
// and whose system calls are interrupted by a signal all the time.

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <sys/time.h>

namespace {

[[maybe_unused]] const bool isForeign = [] {
    const char* const name = std::getenv("LUM_TEST_LOCALE");
    if (!name) return false;
    if (!std::setlocale(LC_ALL, name)) {
        std::fprintf(stderr, "there is no locale %s\n", name);
        std::_Exit(1);
    }
    struct sigaction action = {};
    action.sa_handler = [](int) {};  // without SA_RESTART
    sigaction(SIGALRM, &action, nullptr);
    const itimerval often{{0, 1000}, {0, 1000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    return true;
}();

}  // namespace
