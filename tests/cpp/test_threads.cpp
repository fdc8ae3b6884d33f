// One block per thread: two sessions at once write two complete files.
//
// thrini works on the whole process and is refused once any block exists,
// so the sessions run in a child process of their own.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "kolvex.h"
#include "testkit.h"

namespace {

std::vector<std::string> split(const std::string &text) {
    std::vector<std::string> lines;
    size_t start = 0, nl;
    while ((nl = text.find('\n', start)) != std::string::npos) {
        lines.push_back(text.substr(start, nl - start));
        start = nl + 1;
    }
    if (start < text.size()) lines.push_back(text.substr(start));
    return lines;
}

void session(int n) {
    char name[32];
    std::snprintf(name, sizeof name, "thread%d.met", n);
    setfil(name);
    page(1000 + 100 * n, 800);
    kolini();
    for (int i = 0; i < 300; ++i) pagera();
    kolfin();
}

}  // namespace

TEST(two_threads_run_two_sessions_at_once) {
    std::string dir = testkit::temp_dir();
    std::fflush(nullptr);
    pid_t pid = fork();
    if (pid == 0) {
        if (chdir(dir.c_str()) != 0 || !std::freopen("out.txt", "w", stdout)) _exit(3);
        thrini(2);
        std::thread a(session, 0), b(session, 1);
        a.join();
        b.join();
        thrfin();
        std::fflush(stdout);
        _exit(0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    CHECK(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    for (int n = 0; n < 2; ++n) {
        auto lines = split(testkit::read_file(dir + "/thread" + std::to_string(n) + ".met"));
        CHECK(lines.size() > 2);
        if (lines.size() < 2) continue;
        char head[32];
        std::snprintf(head, sizeof head, "%10.1f%10.1f", (999 + 100 * n) / 100.0, 799 / 100.0);
        CHECK(lines[0] == head);
        // 300 borders of 5 points with an operation field each time it
        // changes, and the colour and end fields: all in fields of ten.
        size_t chars = 0;
        for (size_t i = 1; i < lines.size(); ++i) {
            CHECK(lines[i].size() % 10 == 0 && lines[i].size() <= 80);
            chars += lines[i].size();
        }
        CHECK_EQ(chars / 10, 3u + 300u * (10 + 2) + 1u);
        CHECK(lines.back().size() >= 10 &&
              lines.back().substr(lines.back().size() - 10) == " 9.0000000");
    }
    // Each banner is whole: no line of the other thread falls between.
    auto out = split(testkit::read_file(dir + "/out.txt"));
    int banners = 0;
    for (size_t i = 0; i < out.size(); ++i) {
        if (out[i].find("END OF KOLVEX") == std::string::npos) continue;
        ++banners;
        CHECK(i >= 1 && out[i - 1] == " " + std::string(66, '<'));
        CHECK(i + 4 < out.size());
        if (i + 4 >= out.size()) break;
        CHECK(out[i + 1].compare(0, 15, " <<  Date    : ") == 0);
        CHECK(out[i + 2] == " <<  Vectors : 1200        Warnings: 0         Fileformat: PLOG  <<");
        CHECK(out[i + 3].compare(0, 21, " <<  Metafile: thread") == 0);
        CHECK(out[i + 4] == " " + std::string(66, '<'));
    }
    CHECK_EQ(banners, 2);
}
