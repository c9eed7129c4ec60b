#include "refhost/orvcore/Arena.h"

namespace orvcore::threads {

void Arena::Enqueue(void (*work)()) { arena_.enqueue(work); }

}  // namespace orvcore::threads
