// A session manager with nothing but the protocol. Prints "address ADDRESS" for the environment of its
// clients, "registered" when a client registers, "RestartStyleHint N" when one sets that hint, and "left"
// when one leaves. The line "end" on standard input ends the session: all clients are asked to save and then
// to die.

#include <X11/ICE/ICElib.h>
#include <X11/SM/SMlib.h>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <poll.h>
#include <unistd.h>
#include <vector>

namespace {

std::vector<SmsConn> clients;
std::vector<IceConn> connections;
bool isEnding = false;

void print(const char* what) {
  std::puts(what);
  std::fflush(stdout);
}

Status registerClient(SmsConn client, SmPointer, char* previousId) {
  if (previousId) std::free(previousId);
  SmsRegisterClientReply(client, SmsGenerateClientID(client));
  clients.push_back(client);
  print("registered");
  SmsSaveYourself(client, SmSaveLocal, False, SmInteractStyleNone, False);
  return 1;
}

void setProperties(SmsConn, SmPointer, int count, SmProp** properties) {
  for (int i = 0; i < count; ++i) {
    if (std::strcmp(properties[i]->name, SmRestartStyleHint) == 0 && properties[i]->num_vals == 1) {
      std::printf("RestartStyleHint %d\n", *static_cast<const unsigned char*>(properties[i]->vals[0].value));
      std::fflush(stdout);
    }
    SmFreeProperty(properties[i]);
  }
  std::free(properties);
}

void saved(SmsConn client, SmPointer, Bool) {
  if (isEnding) {
    SmsDie(client);
  } else {
    SmsSaveComplete(client);
  }
}

void forget(SmsConn client) {
  std::erase(clients, client);
  const IceConn connection = SmsGetIceConnection(client);
  std::erase(connections, connection);
  SmsCleanUp(client);
  IceSetShutdownNegotiation(connection, False);
  IceCloseConnection(connection);
  print("left");
}

void closed(SmsConn client, SmPointer, int count, char** reasons) {
  SmFreeReasons(count, reasons);
  forget(client);
}

Status newClient(SmsConn, SmPointer, unsigned long* mask, SmsCallbacks* callbacks, char**) {
  *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
          SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask |
          SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask |
          SmsGetPropertiesProcMask;
  callbacks->register_client.callback = registerClient;
  callbacks->interact_request.callback = [](SmsConn client, SmPointer, int) { SmsInteract(client); };
  callbacks->interact_done.callback = [](SmsConn, SmPointer, Bool) {};
  callbacks->save_yourself_request.callback = [](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {};
  callbacks->save_yourself_phase2_request.callback = [](SmsConn client, SmPointer) {
    SmsSaveYourselfPhase2(client);
  };
  callbacks->save_yourself_done.callback = saved;
  callbacks->close_connection.callback = closed;
  callbacks->set_properties.callback = setProperties;
  callbacks->delete_properties.callback = [](SmsConn, SmPointer, int, char**) {};
  callbacks->get_properties.callback = [](SmsConn client, SmPointer) {
    SmsReturnProperties(client, 0, nullptr);
  };
  return 1;
}

Bool letEverybodyIn(char*) {
  return True;
}

void accept(IceListenObj listener) {
  IceAcceptStatus status = IceAcceptSuccess;
  const IceConn connection = IceAcceptConnection(listener, &status);
  if (!connection) return;
  while (IceConnectionStatus(connection) == IceConnectPending)
    IceProcessMessages(connection, nullptr, nullptr);
  if (IceConnectionStatus(connection) == IceConnectAccepted) connections.push_back(connection);
}

void serve(IceConn connection) {
  if (IceProcessMessages(connection, nullptr, nullptr) != IceProcessMessagesIOError) return;
  const auto client = std::ranges::find(clients, connection, SmsGetIceConnection);
  if (client != clients.end()) forget(*client);
}

void endSession() {
  isEnding = true;
  for (const SmsConn client : clients) SmsSaveYourself(client, SmSaveBoth, True, SmInteractStyleNone, False);
}

void readCommand() {
  std::array<char, 64> line{};
  if (read(STDIN_FILENO, line.data(), line.size() - 1) <= 0) std::exit(0);
  if (std::strncmp(line.data(), "end", 3) == 0) endSession();
}

}  // namespace

int main() {
  std::array<char, 256> error{};
  int count = 0;
  IceListenObj* listeners = nullptr;
  IceSetIOErrorHandler([](IceConn) {});
  if (!SmsInitialize("Test", "1", newClient, nullptr, letEverybodyIn, error.size(), error.data()) ||
      !IceListenForConnections(&count, &listeners, error.size(), error.data())) {
    std::fputs(error.data(), stderr);
    return 1;
  }
  for (int i = 0; i < count; ++i) IceSetHostBasedAuthProc(listeners[i], letEverybodyIn);
  std::printf("address %s\n", IceComposeNetworkIdList(count, listeners));
  std::fflush(stdout);

  while (true) {
    std::vector<pollfd> files{{STDIN_FILENO, POLLIN, 0}};
    for (int i = 0; i < count; ++i) files.push_back({IceGetListenConnectionNumber(listeners[i]), POLLIN, 0});
    const auto served = connections;
    for (const IceConn connection : served) files.push_back({IceConnectionNumber(connection), POLLIN, 0});
    poll(files.data(), files.size(), -1);
    if (files[0].revents) readCommand();
    for (int i = 0; i < count; ++i) {
      if (files[1 + static_cast<std::size_t>(i)].revents) accept(listeners[i]);
    }
    for (std::size_t i = 0; i < served.size(); ++i) {
      if (files[1 + static_cast<std::size_t>(count) + i].revents) serve(served[i]);
    }
  }
}
