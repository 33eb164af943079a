#pragma once

/// Marks what hosts may use. Everything else is compiled with hidden visibility.
#define QEL_API __attribute__((visibility("default")))
