#ifndef KVL_FOUNDATION_CUNZIP_UTILITY_H
#define KVL_FOUNDATION_CUNZIP_UTILITY_H

#include <list>
#include <string>

/// Unpacking of update modules, which are zip archives, by the system's `unzip`, and removal of the folders that they
/// were unpacked into. All operations are static and trace under the module name that they are given.
///
/// Any thread may call, but two calls must not work on one folder at once. A call blocks until `unzip` has ended or the
/// folder is gone, without a limit.
class __attribute__((visibility("default"))) CUnzip_Utility {
public:
    /// Removes a folder with everything below it. A link below it is removed, not followed. The first failure stops
    /// the walk and leaves what wasn't reached; a file that can't be deleted costs up to 55 seconds of `Sleep`, and a
    /// link that leads nowhere stays, so its folder stays as well.
    /// @param path  at most 4096 characters, not empty
    /// @return true if the folder is gone, or can't be opened for reading and so counts as gone
    static bool DeleteFolder(std::string path, std::string moduleName);

    /// Unpacks an archive, overwriting files without a question. What `unzip` prints goes to the output of this
    /// process.
    /// @param zipPath  the archive. It goes between double quotes into a shell command of at most 8223 characters
    /// @param outPath  an existing directory; it goes there likewise
    /// @return false if there is no such directory or `unzip` ends with a status other than 0, a warning's included
    static bool Unzip(std::string zipPath, std::string outPath, std::string moduleName);

    /// Unpacks the first archive of a list, which is the first name that holds ".zip" anywhere.
    /// @param directory       where the files lie
    /// @param files           their names; stays as it is
    /// @param outPath         an existing directory
    /// @param moduleBaseName  receives the archive's name up to its first ".", also if unpacking fails; untouched if
    ///                        there is no archive
    /// @return false if there is no archive or unpacking fails
    static bool UpdateModuleUnzip(std::string directory, std::list<std::string>* files, std::string outPath,
                                  std::string* moduleBaseName, std::string moduleName);
};

#endif
