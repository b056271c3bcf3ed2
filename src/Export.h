#pragma once

// Marks the classes, operations and constants that the shared library exports; everything else is hidden.
#define KZM_MODBUS_EXPORT __attribute__((visibility("default")))
