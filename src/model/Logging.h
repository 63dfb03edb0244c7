#pragma once

#include <QLoggingCategory>

// One category per subsystem, so a user can switch on exactly the log that explains a problem:
// QT_LOGGING_RULES="mosswick.store.debug=true".
Q_DECLARE_LOGGING_CATEGORY(lcStore)
Q_DECLARE_LOGGING_CATEGORY(lcStaging)
Q_DECLARE_LOGGING_CATEGORY(lcSettings)
Q_DECLARE_LOGGING_CATEGORY(lcIngest)
Q_DECLARE_LOGGING_CATEGORY(lcShelf)
