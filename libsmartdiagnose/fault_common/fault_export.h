#pragma once

// Marks what the shipped file exports; cmake/smartdiagnose.map names the same.
#define FAULT_EXPORT __attribute__((visibility("default")))
