// atserver --tcp against a modem on a TCP socket that hangs up: the running
// command is answered ERROR, and the server connects again.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "e2e_fixture.h"
#include "link/ats_paths.h"

namespace atapi::e2e {
namespace {

// Answers every command OK, "AT+CGMI" with kManufacturer; closes the
// connection on "AT+BYE".
class TcpModem {
  public:
    TcpModem() : listenFd_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in addr{};
        addr.sin_family = AF_INET;
        addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t len = sizeof addr;
        auto *raw = reinterpret_cast<sockaddr *>(&addr);
        if (bind(listenFd_, raw, len) == 0 && listen(listenFd_, 4) == 0 &&
            getsockname(listenFd_, raw, &len) == 0) {
            port_ = ntohs(addr.sin_port);
        }
        thread_ = std::thread([this] { Serve(); });
    }
    ~TcpModem() {
        stop_ = true;
        thread_.join();
        close(listenFd_);
    }
    int Port() const { return port_; }
    int Connections() const { return connections_; }

  private:
    void Serve() {
        int client = -1;
        std::string line;
        char c = 0;
        while (!stop_) {
            pollfd pfd{client != -1 ? client : listenFd_, POLLIN, 0};
            if (poll(&pfd, 1, 20) <= 0) continue;
            if (client == -1) {
                client = accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC);
                connections_ += client != -1 ? 1 : 0;
            } else if (read(client, &c, 1) != 1 || (c == '\r' && line == "AT+BYE")) {
                close(std::exchange(client, -1));
                line.clear();
            } else if (c == '\r') {
                std::string answer = std::exchange(line, {}) == "AT+CGMI"
                                         ? std::string("\r\n") + kManufacturer + "\r\n"
                                         : "";
                answer += "\r\nOK\r\n";
                if (write(client, answer.data(), answer.size()) < 0)
                    close(std::exchange(client, -1));
            } else if (c != '\n') {
                line += c;
            }
        }
        if (client != -1) close(client);
    }

    int listenFd_;
    int port_ = 0;
    std::atomic<bool> stop_{false};
    std::atomic<int> connections_{0};
    std::thread thread_;
};

TEST(TcpModem, HangUpIsAnsweredErrorAndTheServerConnectsAgain) {
    test::IsolatedRuntime runtime;
    TcpModem modem;
    ASSERT_NE(modem.Port(), 0);
    AtServerProcess server(runtime);
    server.Launch({"--tcp", "127.0.0.1:" + std::to_string(modem.Port()), "--ready-timeout", "5"});
    ASSERT_TRUE(WaitUntil([] { return FileExists(ReadyFlagPath()); }, std::chrono::seconds(5)))
        << server.Log();
    EXPECT_EQ(Send("AT+CGMI").text, kManufacturer);

    EXPECT_EQ(Send("AT+BYE", 5).retVal, AT_RET_ERROR);
    EXPECT_TRUE(WaitUntil([&] { return modem.Connections() == 2; }, std::chrono::seconds(5)));
    Exchange again;
    WaitUntil([&] { return (again = Send("AT+CGMI", 2)).retVal == AT_RET_OK; },
              std::chrono::seconds(5));
    EXPECT_EQ(again.text, kManufacturer) << server.Log();
    EXPECT_EQ(server.Stop(), 0);
    ExpectNothingLeft();
}

}  // namespace
}  // namespace atapi::e2e
