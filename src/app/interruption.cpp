#include "app/interruption.h"

namespace linewatch::app {

namespace {

volatile std::sig_atomic_t wasInterrupted = 0;

}  // namespace

Interruption::Interruption() {
  wasInterrupted = 0;
  struct sigaction noting {};
  noting.sa_handler = [](int) { wasInterrupted = 1; };
  ::sigaction(SIGINT, nullptr, &before_);
  // Under nohup or in the background the signal is ignored, and stays so.
  if (before_.sa_handler != SIG_IGN) ::sigaction(SIGINT, &noting, nullptr);
}

Interruption::~Interruption() { ::sigaction(SIGINT, &before_, nullptr); }

bool Interruption::isRequested() { return wasInterrupted != 0; }

}  // namespace linewatch::app
