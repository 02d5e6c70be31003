// atserver --tcp against a modem on a TCP socket that hangs up: the loss is
// logged, the running command answered ERROR, and the server connects again.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "atapi/at_types.h"
#include "e2e_fixture.h"
#include "link/ats_paths.h"

namespace atapi::e2e {
namespace {

// Answers "AT" and "AT+CGMI"; closes the connection on "AT+BYE".
class TcpModem {
  public:
    TcpModem() {
        listenFd_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in addr{};
        addr.sin_family = AF_INET;
        addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t len = sizeof addr;
        if (bind(listenFd_, reinterpret_cast<sockaddr *>(&addr), len) == 0 &&
            listen(listenFd_, 4) == 0 &&
            getsockname(listenFd_, reinterpret_cast<sockaddr *>(&addr), &len) == 0) {
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
        while (!stop_) {
            pollfd pfd{client != -1 ? client : listenFd_, POLLIN, 0};
            if (poll(&pfd, 1, 20) <= 0) continue;
            if (client == -1) {
                client = accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC);
                connections_ += client != -1 ? 1 : 0;
                continue;
            }
            char c = 0;
            if (read(client, &c, 1) != 1) {
                close(std::exchange(client, -1));
                continue;
            }
            if (c != '\r') {
                if (c != '\n') line += c;
                continue;
            }
            const std::string command = std::exchange(line, {});
            if (command == "AT+BYE") {
                close(std::exchange(client, -1));
                continue;
            }
            const std::string answer = command == "AT+CGMI"
                                           ? std::string("\r\n") + kManufacturer + "\r\n\r\nOK\r\n"
                                           : "\r\nOK\r\n";
            if (write(client, answer.data(), answer.size()) < 0) close(std::exchange(client, -1));
        }
        if (client != -1) close(client);
    }

    int listenFd_ = -1;
    int port_ = 0;
    std::atomic<bool> stop_{false};
    std::atomic<int> connections_{0};
    std::thread thread_;
};

TEST(TcpModem, HangUpIsLoggedAndTheServerConnectsAgain) {
    test::IsolatedRuntime runtime;
    TcpModem modem;
    ASSERT_NE(modem.Port(), 0);
    AtServerProcess server(runtime);
    server.Launch({"--tcp", "127.0.0.1:" + std::to_string(modem.Port()), "--ready-timeout", "5"});
    ASSERT_TRUE(WaitUntil([] { return FileExists(ReadyFlagPath()); }, std::chrono::seconds(5)))
        << server.Log();
    EXPECT_EQ(Send("AT+CGMI").text, kManufacturer);

    const Exchange bye = Send("AT+BYE", 5);
    EXPECT_EQ(bye.retVal, AT_RET_ERROR);
    EXPECT_TRUE(server.WaitForLog("modem port closed (end of stream); opening it again in "))
        << server.Log();
    EXPECT_TRUE(WaitUntil([&] { return modem.Connections() == 2; }, std::chrono::seconds(5)));
    Exchange again;
    WaitUntil(
        [&] {
            again = Send("AT+CGMI", 2);
            return again.retVal == AT_RET_OK;
        },
        std::chrono::seconds(5));
    EXPECT_EQ(again.text, kManufacturer) << server.Log();
    EXPECT_EQ(server.Stop(), 0);
    ExpectNothingLeft();
}

}  // namespace
}  // namespace atapi::e2e
