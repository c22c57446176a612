// Node-to-node messages of the host agent.
//
// A request names an operation (opcode) and a node; the handler that the node registered for the opcode
// runs there and may answer with one acknowledgement. Payloads are in the byte order of the nodes.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// The header of a message. The sender's ZORV_CommFillinCommInfoInner() fills it in; a handler gets the one
// that belongs to the message it was called for.
typedef struct {
    uint32_t srcNid, dstNid;  // node ids
    uint32_t module;          // the sender's module number
    uint32_t msgOPCode;
    uint32_t msgLen;     // payload bytes
    uint32_t needReply;  // 1: the sender waits for an acknowledgement
    uint64_t sequence;   // the message service's own
} ZORV_COMM_INFO_S;

// An answer. `data` is null when there was none.
typedef struct {
    void* data;
    uint32_t length;  // bytes at `data`
    uint32_t reserved;
} ZORV_COMM_RET_S;

// Handles one message, on a thread of the message service; several may run at once. `info` and the payload
// `msg` (info->msgLen bytes; null when there are none) are valid for the call only; `context` is the
// service's own. The service ignores the result.
typedef uint32_t (*ZORV_MSG_HANDLER)(ZORV_COMM_INFO_S* info, char* msg, void* context);

// Makes `handler` the one for `opcode` on this node, for the life of the process. Returns 0, or non-zero
// when the opcode has a handler already. Called during start-up.
uint32_t ZORV_CommRegMsgHandle(uint32_t opcode, ZORV_MSG_HANDLER handler);

// Answers the message of `info`, from within its handler; `length` bytes at `data` are copied. Returns 0,
// or non-zero when the answer could not be sent (the sender's request then fails at its deadline).
uint32_t ZORV_CommSendAckMsg(ZORV_COMM_INFO_S* info, void* data, uint32_t length);

// Clears `*info` and fills it in for a message from this node to `dstNid`. `needReply` 1: a request that
// expects an acknowledgement.
void ZORV_CommFillinCommInfoInner(ZORV_COMM_INFO_S* info, uint32_t dstNid, uint32_t module, uint32_t opcode,
                                  uint32_t length, uint32_t needReply);

// Sends `info->msgLen` bytes at `request` and blocks until the answer is there or the service's deadline has
// passed. Returns 0 with the answer in `*reply`, whose data the caller frees with ZORV_CommFreeRetData();
// non-zero, with nothing to free, when no answer came. A node may send to itself. Any thread but a handler's.
uint32_t ZORV_CommSendRequestMsg(ZORV_COMM_INFO_S* info, void* request, ZORV_COMM_RET_S* reply);

// Frees the data of an answer and sets the pointer to null.
void ZORV_CommFreeRetData(ZORV_COMM_RET_S* reply);

// The id of the cluster's master node, and of this node. Any thread; neither blocks.
uint32_t ZORV_GetMasterNid(void);
uint32_t ZORV_GetLocalNid(void);

#ifdef __cplusplus
}
static_assert(sizeof(ZORV_COMM_INFO_S) == 32, "part of the binary contract");
static_assert(sizeof(ZORV_COMM_RET_S) == 16, "part of the binary contract");
#endif
