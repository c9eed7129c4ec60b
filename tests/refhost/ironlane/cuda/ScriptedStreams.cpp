// Streams and events.

#include "tests/refhost/ironlane/cuda/ScriptedState.h"

using namespace scripted;  // NOLINT(google-build-using-namespace): the driver's own functions

extern "C" {

int cuStreamCreate(void** stream, unsigned flags) {
  const Call call = BeginInContext("cuStreamCreate");
  if (call.result != 0) return call.result;
  if (flags > 1) return Refuse("cuStreamCreate with unknown flags", kInvalidValue);
  auto made = std::make_unique<Stream>();
  made->context = call.context;
  *stream = made.get();
  TheState().streams.emplace(*stream, std::move(made));
  ++TheState().driver.streams;
  return 0;
}
int cuStreamDestroy_v2(void* stream) {
  const Call call = BeginInContext("cuStreamDestroy");
  if (call.context == nullptr || call.context->error != 0) return call.result;
  Stream* known = StreamAt(stream, call, "cuStreamDestroy");
  if (known == nullptr) return kInvalidHandle;
  RunUntil(*known, known->given);
  for (auto& [handle, event] : TheState().events) {
    if (event->stream == known) event->stream = nullptr;
  }
  TheState().streams.erase(stream);
  --TheState().driver.streams;
  return call.result;
}
int cuStreamSynchronize(void* stream) {
  const Call call = BeginInContext("cuStreamSynchronize");
  if (call.result != 0) return call.result;
  Stream* known = StreamAt(stream, call, "cuStreamSynchronize");
  return known == nullptr ? kInvalidHandle : Wait(*known, known->given);
}
int cuStreamWaitEvent(void* stream, void* event, unsigned flags) {
  const Call call = BeginInContext("cuStreamWaitEvent");
  if (call.result != 0) return call.result;
  Stream* known = StreamAt(stream, call, "cuStreamWaitEvent");
  const Event* place = At(TheState().events, event, call, "cuStreamWaitEvent with an event");
  if (known == nullptr || place == nullptr) return kInvalidHandle;
  if (flags != 0) return Refuse("cuStreamWaitEvent with flags", kInvalidValue);
  Give(*known, "cuStreamWaitEvent", [other = place->stream, ticket = place->ticket] {
    if (other != nullptr) RunUntil(*other, ticket);
    return 0;
  });
  return 0;
}
int cuEventCreate(void** event, unsigned flags) {
  const Call call = BeginInContext("cuEventCreate");
  if (call.result != 0) return call.result;
  if ((flags & ~3U) != 0) return Refuse("cuEventCreate with unknown flags", kInvalidValue);
  auto made = std::make_unique<Event>();
  made->context = call.context;
  *event = made.get();
  TheState().events.emplace(*event, std::move(made));
  ++TheState().driver.events;
  return 0;
}
int cuEventRecord(void* event, void* stream) {
  const Call call = BeginInContext("cuEventRecord");
  if (call.result != 0) return call.result;
  Event* place = At(TheState().events, event, call, "cuEventRecord with an event");
  Stream* known = StreamAt(stream, call, "cuEventRecord");
  if (known == nullptr || place == nullptr) return kInvalidHandle;
  place->stream = known;
  place->ticket = known->given;
  return 0;
}
int cuEventSynchronize(void* event) {
  const Call call = BeginInContext("cuEventSynchronize");
  if (call.result != 0) return call.result;
  const Event* place = At(TheState().events, event, call, "cuEventSynchronize with an event");
  if (place == nullptr) return kInvalidHandle;
  return place->stream == nullptr ? 0 : Wait(*place->stream, place->ticket);
}
int cuEventDestroy_v2(void* event) {
  const Call call = BeginInContext("cuEventDestroy");
  if (call.context == nullptr || call.context->error != 0) return call.result;
  if (At(TheState().events, event, call, "cuEventDestroy with an event") == nullptr) {
    return kInvalidHandle;
  }
  TheState().events.erase(event);
  --TheState().driver.events;
  return call.result;
}

}  // extern "C"
