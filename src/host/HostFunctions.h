#ifndef KVL_HOST_HOSTFUNCTIONS_H
#define KVL_HOST_HOSTFUNCTIONS_H

// Services of the loading process in the form of functions. The library calls them on the thread that called it. All
// but `Sleep` wait as long as the file system does.

// An executable that hides its own symbols still exports these.
#pragma GCC visibility push(default)

/// Deletes a file. @return non-zero on success
int DeleteFileA(const char* path);

/// Removes an empty directory. @return non-zero on success
int RemoveDirectoryA(const char* path);

/// Copies a file. @param failIfExists  0 replaces an existing target @return non-zero on success
int CopyFileA(const char* source, const char* target, int failIfExists);

/// @return the integer value of `key` in the `[section]` of an INI file, or `defaultValue` if file, section or
/// key is missing
int GetPrivateProfileIntA(const char* section, const char* key, int defaultValue, const char* path);

/// Copies the text value of `key` in the `[section]` of an INI file, or `defaultValue` if there is none, into
/// `buffer`: at most `size` bytes with the closing zero.
void GetPrivateProfileStringA(const char* section, const char* key, const char* defaultValue, char* buffer,
                              unsigned long size, const char* path);

/// Blocks the calling thread.
void Sleep(unsigned long milliseconds);

#pragma GCC visibility pop

#endif
