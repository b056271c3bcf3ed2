#pragma once

// Marks the classes and operations that the gateway's shared library exports; everything else is hidden.
#define KZM_GATEWAY_EXPORT __attribute__((visibility("default")))
