#include "ingest/IngestServices.h"

#include "model/Preferences.h"
#include "model/Scheduler.h"
#include "model/ShelfStore.h"

namespace mosswick {

IngestServices IngestServices::shared() {
    return IngestServices{Scheduler::shared(), Preferences::shared(), ShelfStore::shared()};
}

}  // namespace mosswick
