// The message link: a TCP client connection to a status server on this
// machine.  It carries every output line (kind 1) and the engine's two status
// messages (kind 11: 1 when it connects, 2 when it shuts down).
//
// A message is an 8-byte header, the kind and the body length as 32-bit
// integers in the machine's own (little-endian) order, then the body.
#pragma once

#include <cstdint>

namespace lf {

constexpr uint32_t SERV_PORT = 9876;
constexpr int32_t kMsgLine = 1;     // one output line, without trailing blanks
constexpr int32_t kMsgStatus = 11;  // body: 32-bit 1 at start, 2 at the end

extern uint32_t sock_fd;  // the one socket of the link

// Socket level.  InitConnection connects to SERV_PORT at a dotted IPv4
// address (the loopback address when null); 0 on success, -1 on failure.
int InitConnection(const char* address);
// One send of length bytes: the number of bytes taken, or -1.
int WriteMessage(const char* buffer, int length);
// One receive without waiting: the number of bytes read, -1 when nothing is
// there.
int ReadMessage(char* buffer, int length);
int CloseConnection();

// Framing level.  status: 0 when all went through, 2 when ten tries did not
// suffice.
void msgsend(int32_t kind, const void* body, int32_t length, int32_t& status);
// Reads a header; kind and length are 0 when nothing is there.
void msgheadrecv(int32_t& kind, int32_t& length);
void msgbodyrecv(void* body, int32_t length, int32_t& status);
// Reads and drops a body of length bytes.
void msgbodyclr(int32_t length, int32_t& status);

}  // namespace lf
