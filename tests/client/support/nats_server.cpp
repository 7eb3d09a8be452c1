#include "tests/client/support/nats_server.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <poll.h>
#include <random>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace whiteboard {

namespace {

sockaddr_in loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

/// A socket bound to a free port. The system gives the ports of this range to nobody by itself, so
/// the port stays free while its server is down.
int boundSocket() {
  constexpr int kTries = 1000;
  std::random_device source;
  std::uniform_int_distribution<int> port(15000, 30000);
  const int made = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  for (int i = 0; made >= 0 && i < kTries; ++i) {
    const sockaddr_in address = loopback(static_cast<std::uint16_t>(port(source)));
    const auto* general = reinterpret_cast<const sockaddr*>(&address);
    if (::bind(made, general, sizeof address) == 0) return made;
  }
  throw std::system_error(errno, std::generic_category(), "bind");
}

std::uint16_t portOf(int socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

std::uint16_t freePort() {
  const int socket = boundSocket();
  const std::uint16_t port = portOf(socket);
  ::close(socket);
  return port;
}

bool accepts(std::uint16_t port) {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = loopback(port);
  const bool works =
      ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  ::close(socket);
  return works;
}

std::string urlOf(std::uint16_t port) { return "nats://127.0.0.1:" + std::to_string(port); }

}  // namespace

NatsServer::NatsServer(Options options) : port_(freePort()) {
  std::ofstream settings(folder_.at("settings"));
  settings << "listen: \"127.0.0.1:" << port_ << "\"\n";
  settings << "log_file: \"" << folder_.at("log") << "\"\n";
  if (options.hasJetStream) {
    settings << "jetstream { store_dir: \"" << folder_.at("data") << "\" }\n";
  }
  if (!options.token.empty()) settings << "authorization { token: \"" << options.token << "\" }\n";
  if (options.maxPayload > 0) settings << "max_payload: " << options.maxPayload << "\n";
  if (options.hasReader) {
    settings
        << "authorization { users: [ { user: writer, password: writer },\n"
        << "{ user: reader, password: reader, permissions: { publish: { deny: \"lesson.>\" } } "
           "} ] }\n";
  }
  settings.close();
  start();
}

void NatsServer::kill() { process_.reset(); }

void NatsServer::start() {
  process_ = std::make_unique<VelWhiteBoard::ChildProcess>(
      std::vector<std::string>{VELWB_NATS_SERVER, "-c", folder_.at("settings")});
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!accepts(port_)) {
    if (std::chrono::steady_clock::now() > end) throw std::runtime_error("the server is not there");
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

void NatsServer::loseData() { std::filesystem::remove_all(folder_.at("data")); }

void NatsServer::hang() {
  ::kill(process_->id(), SIGSTOP);
  int status = 0;
  // Until all of its threads have stopped.
  ::waitpid(process_->id(), &status, WUNTRACED);
}

void NatsServer::resume() { ::kill(process_->id(), SIGCONT); }

std::string NatsServer::url() const { return urlOf(port_); }

std::string NatsServer::urlFor(const std::string& user) const {
  return "nats://" + user + ":" + user + "@127.0.0.1:" + std::to_string(port_);
}

SilentServer::SilentServer() : socket_(boundSocket()) { ::listen(socket_, 10); }

SilentServer::~SilentServer() { ::close(socket_); }

bool SilentServer::isCalled() const {
  pollfd waiting{socket_, POLLIN, 0};
  return ::poll(&waiting, 1, 0) == 1;
}

std::string SilentServer::url() const { return urlOf(portOf(socket_)); }

std::string deadUrl() { return urlOf(freePort()); }

}  // namespace whiteboard
