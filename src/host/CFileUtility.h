#ifndef KVL_HOST_CFILEUTILITY_H
#define KVL_HOST_CFILEUTILITY_H

#include <list>
#include <string>

/// File services of the loading process. A missing file or directory is a normal result, reported by the
/// returned value. The library calls on the thread that called it, and waits as long as the file system does.
class __attribute__((visibility("default"))) CFileUtility {
public:
    /// @param kind  always 0
    /// @return the product's install directory, without a "/" at its end
    static std::string GetInstallPath(int kind);

    /// Creates a directory with its missing parents.
    /// @return true also if it existed already
    static bool CreateFolder(std::string path);

    /// @return true if the path exists, whatever it is
    static bool IsFileExist(std::string path);

    /// Lists the files of a directory that match a pattern.
    /// @param directory  where to look
    /// @param pattern    a plain name, or a form with wildcards such as "cache_dump_*.txt"
    /// @param found      receives the names, without the directory, and nothing else: earlier content goes
    /// @param flag       always false
    static void SearchFile(std::string directory, std::string pattern, std::list<std::string>* found, bool flag);

    /// Deletes every file of a directory that has the given extension.
    /// @param directory  where to delete; nothing is deleted for an empty text
    /// @param extension  without dot or star, such as "txt"
    static void DeleteAllFileByExtendName(std::string directory, std::string extension);
};

#endif
