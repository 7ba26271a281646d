#ifndef KVL_PROVIDER_LIBRARY_WORKING_TREE_H
#define KVL_PROVIDER_LIBRARY_WORKING_TREE_H

#include <string>

namespace kvl::provider {

/// The directory below which the library keeps what it knows of the adapters, and the paths in it.
class WorkingTree {
public:
    /// The tree that the library works in now.
    static WorkingTree inUse();

    /// The tree of the installation, which is not the one in use while a dry run looks.
    static WorkingTree installed();

    const std::string& path() const { return path_; }

    /// A file or directory in the directory of temporary files.
    std::string temporary(const std::string& name) const { return path_ + "/temp/" + name; }

    /// The directory of temporary files itself.
    std::string temporaryDirectory() const { return path_ + "/temp"; }

    /// The directory in which the adapters of a family are updated.
    std::string updateDirectory(const std::string& family) const;

    /// The list of the adapters, which this program has the tool write.
    std::string adapterListFile() const { return temporary("Listhbas.txt"); }

    /// What the tool last printed about the directory in which it keeps its dumps.
    std::string dumpDirectoryFile() const { return temporary("DumpDirectory.txt"); }

    /// What the check of the installed packages has printed.
    std::string packagesFile() const { return temporary("rpm_grep_result.txt"); }

    /// @return true if the tree holds a dump of the port, so that its versions can be read without the tool
    bool isCached(const std::string& device, const std::string& family) const;

    /// Makes the tree and ensures that it is safe: the user's own and closed to other writers, since the tool writes
    /// into it, often as root, and its paths go through a shell. For the tree in use.
    /// @throws AdapterFailure if it can't be made, ProviderError if it isn't safe, with what to do
    void make() const;

private:
    explicit WorkingTree(const std::string& installPath) : path_(installPath + "/tmp/EMULEX") {}

    std::string path_;
};

}  // namespace kvl::provider

#endif
