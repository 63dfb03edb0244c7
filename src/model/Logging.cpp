#include "model/Logging.h"

Q_LOGGING_CATEGORY(lcStore, "mosswick.store", QtInfoMsg)
Q_LOGGING_CATEGORY(lcStaging, "mosswick.staging", QtInfoMsg)
Q_LOGGING_CATEGORY(lcSettings, "mosswick.settings", QtInfoMsg)
Q_LOGGING_CATEGORY(lcIngest, "mosswick.ingest", QtInfoMsg)
Q_LOGGING_CATEGORY(lcShelf, "mosswick.shelf", QtInfoMsg)
