#pragma once

// Stands before the library's own header: there is never an observer.
#include_next "DataModel/Observation.h"

#define tObserver (static_cast<StepObserver*>(nullptr))
