#include "support/uThread.h"

#include <utility>

#include "support/uExceptions.h"

namespace varcolin {

TThread::TThread(std::function<void(TThread&)> ABody) : FBody(std::move(ABody)) {}

TThread::~TThread() {
  Terminate();
  WaitFor();
}

void TThread::Start() {
  if (!FBody) throw EAssertionFailed(u"uThread", __LINE__);
  // An exception that leaves the body ends the process, as std::thread has it.
  FThread = std::thread([this, body = FBody] {
    body(*this);
    FFinished = true;
  });
  FBody = nullptr;  // marks the thread as started
}

void TThread::WaitFor() {
  if (FThread.joinable()) FThread.join();
}

}  // namespace varcolin
