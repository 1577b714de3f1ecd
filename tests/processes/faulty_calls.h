// System calls of a peer that fail on demand. They are taken over (CMakeLists.txt), so that the library's calls pass
// through here from its very load on. The environment says what fails:
//
//     SORVANE_FAULTS="semop 3 once 4;semctl 1 ever 13"    the third semop with errno 4, every semctl with errno 13
//
// Calls: ftok semget semop semctl shmget shmat shmctl open flock fopen ioctl new (the nothrow operator), and of the
// semops alone those that take (all but the return of a mutex, for which the system needs nothing), leave or join. The
// peer says "! struck" where a fault strikes, and "! repeated" for an exchange that is sent again after it failed.
//
// Where semop or shmctl fail with EIDRM, shmat with that or EINVAL, set or segment are really removed first.
#ifndef SORVANE_TESTS_PROCESSES_FAULTY_CALLS_H
#define SORVANE_TESTS_PROCESSES_FAULTY_CALLS_H

#include "tests/support/board_calls.h"

#include <string>

namespace tests
{

/// Whether an exchange gets to the driver; with SORVANE_FAULTS it is looked at on the way.
bool exchangeArrives(const Exchange &exchange);
/// What the exchanges since the last call have seen: their number, the mutexes held during them, the
/// registrations, and whether there was a segment.
std::string takeObservation();

}  // namespace tests

#endif
