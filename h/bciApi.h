/// @file
/// Marks what the shared library exports.
#ifndef BCI_API_H
#define BCI_API_H

/// Put before a class or function of the public interface. Everything else in the library is compiled
/// with hidden visibility.
#define BCI_API __attribute__((visibility("default")))

#endif
