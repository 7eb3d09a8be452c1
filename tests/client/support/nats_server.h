/// @file
/// A real server for the tests of the transport.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "tests/reliability/child_process.h"
#include "tests/support/temporary_folder.h"

namespace whiteboard {

/// A NATS server with JetStream on a free port of the loopback interface, with a folder of its own.
/// It and the folder go at the end of the scope.
class NatsServer {
 public:
  struct Options {
    /// Empty: everybody is let in.
    std::string token = {};
    /// The longest message, in bytes; 0: the server's own limit.
    int maxPayload = 0;
    bool hasJetStream = true;
    /// Whether there are two users in place of the token: `writer`, and `reader`, who may not send
    /// to lessons. The name is the password.
    bool hasReader = false;
  };

  /// Starts it, and returns when it accepts connections.
  /// @throws std::runtime_error when it does not within 20 seconds.
  NatsServer() : NatsServer(Options{}) {}
  explicit NatsServer(Options options);

  /// Ends it in the middle of whatever it does, as a power failure of the process would.
  void kill();
  /// After `kill`: on the same port, with what the folder has.
  void start();
  /// After `kill`: everything that it has stored.
  void loseData();
  /// It stays, and does nothing more.
  void hang();
  /// After `hang`.
  void resume();

  std::string url() const;
  /// The address for a user.
  std::string urlFor(const std::string& user) const;

 private:
  std::uint16_t port_;
  VelWhiteBoard::TemporaryFolder folder_;
  std::unique_ptr<VelWhiteBoard::ChildProcess> process_;
};

/// Takes connections, and never says a word.
class SilentServer {
 public:
  SilentServer();
  ~SilentServer();
  SilentServer(const SilentServer&) = delete;
  SilentServer& operator=(const SilentServer&) = delete;

  /// Whether somebody has connected.
  bool isCalled() const;
  std::string url() const;

 private:
  int socket_;
};

/// The address of a port on which nobody listens.
std::string deadUrl();

}  // namespace whiteboard
