// Signals that a host handles while the library waits for a file: they are not its end. (Windows has none.)
#ifndef _WIN32
#include "platform/File.h"

#include "support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <string>
#include <thread>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using z3d::platform::File;

volatile std::sig_atomic_t signalsSeen = 0;

// A handler of a host that does not ask for calls to be taken up again.
class SignalsOfAHost {
public:
    SignalsOfAHost() {
        struct sigaction action = {};
        action.sa_handler = [](int) { signalsSeen = signalsSeen + 1; };
        sigaction(SIGUSR1, &action, &before_);
        signalsSeen = 0;
    }
    ~SignalsOfAHost() { sigaction(SIGUSR1, &before_, nullptr); }
    SignalsOfAHost(const SignalsOfAHost&) = delete;
    SignalsOfAHost& operator=(const SignalsOfAHost&) = delete;

private:
    struct sigaction before_ = {};
};

void Interrupt(pthread_t thread) {
    for (int time = 0; time < 20; ++time) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        pthread_kill(thread, SIGUSR1);
    }
}

// A pipe with a name in a folder of its own.
class NamedPipe {
public:
    NamedPipe() {
        EXPECT_NE(mkdtemp(folder_.data()), nullptr);
        name_ = folder_ + "/pipe";
        EXPECT_EQ(mkfifo(name_.c_str(), 0600), 0);
    }
    ~NamedPipe() {
        unlink(name_.c_str());
        rmdir(folder_.c_str());
    }
    NamedPipe(const NamedPipe&) = delete;
    NamedPipe& operator=(const NamedPipe&) = delete;

    const char* Name() const { return name_.c_str(); }

private:
    std::string folder_ = z3d::test::FolderName() + "/z3d-pipe-XXXXXX";
    std::string name_;
};

TEST(File, IsReadToItsEndWhateverSignalsArrive) {
    const SignalsOfAHost signals;
    const NamedPipe pipe;
    const pthread_t reader = pthread_self();
    std::thread writer([&] {
        Interrupt(reader); // while it opens
        const int end = open(pipe.Name(), O_WRONLY);
        EXPECT_EQ(write(end, "ab", 2), 2);
        Interrupt(reader); // while it reads
        EXPECT_EQ(write(end, "cde", 3), 3);
        close(end);
    });

    std::array<char, 8> bytes = {};
    File file(pipe.Name());
    const int other = file.IsOpen() ? -1 : open(pipe.Name(), O_RDWR); // lets the writer go on
    const std::size_t got = file.Read(bytes.data(), bytes.size());
    writer.join();
    close(other);

    EXPECT_EQ(got, 5u);
    EXPECT_STREQ(bytes.data(), "abcde");
    EXPECT_GT(signalsSeen, 0);
}

} // namespace
#endif
