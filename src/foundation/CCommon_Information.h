#ifndef KVL_FOUNDATION_CCOMMON_INFORMATION_H
#define KVL_FOUNDATION_CCOMMON_INFORMATION_H

#include <string>

/// Running other programs through the shell, the file helpers that go with them, and questions about the machine. Those
/// operations that take a module name trace under it; the others trace nothing.
///
/// All operations are static, hold no data and may be called from any thread, but no other thread may close or replace
/// the descriptors 0 to 2 meanwhile. They block the caller's thread until they are done: where a command is run, until
/// it has ended, without a limit unless there is a parameter for it. A timeout is noticed up to a second late.
class __attribute__((visibility("default"))) CCommon_Information {
public:
    // ---- Other programs ----

    /// Runs a command with its standard output in a file and standard error closed.
    /// @param command     a text for `sh -c`; an empty one isn't run
    /// @param resultFile  created or emptied, as seen from `workDir`; empty: the command keeps all descriptors of this
    ///                    process, standard error included
    /// @param workDir     where the command runs; empty for here. One that can't be opened fails the operation
    /// @param exitCode    receives the command's exit status, 0 to 255; 255 unless the result is 0. A directory that
    ///                    can't be entered, a result file that can't be opened and a missing shell give status 1
    /// @param timeout     milliseconds, polled once a second; the unsigned value of -1 for no limit
    /// @return 0 the command ran and exited by itself; 1 it could not be run, was ended, stopped or continued by a
    ///         signal, or waiting failed; 255 the time ran out, and the command goes on running
    static unsigned long ExecForeignModule(const std::string& command, const std::string& resultFile,
                                           const std::string& workDir, unsigned long* exitCode, unsigned long timeout);

    /// Runs a command and hands back the read end of a pipe that holds its standard output; standard error is
    /// closed. The pipe is looked at only when the command has ended, so the output must fit into it.
    /// @param command   a text for `sh -c`; an empty one isn't run
    /// @param pipeFd    receives the read end if the result is 0: the caller closes it. Untouched otherwise
    /// @param workDir   where the command runs; empty for here
    /// @param exitCode  receives the command's exit status, 0 to 255; 255 unless the result is 0
    /// @param timeout   milliseconds; the unsigned value of -1 for no limit
    /// @return 0 the command ran and exited by itself; 1 it could not be run, was ended, stopped or continued by a
    ///         signal, or waiting failed; 255 the time ran out, and the command goes on running
    static unsigned long POpenForeignModule(const std::string& command, int* pipeFd, const std::string& workDir,
                                            unsigned long* exitCode, unsigned long timeout);

    /// Runs a command without a limit of time and reads its first line.
    /// @return the line without its line feed, 255 characters at most; empty if the command fails, exits with
    ///         a status other than 0, or prints nothing
    static std::string GetResultLine(const std::string& command);

    /// Takes the next token off the front of a text. Empty tokens count.
    /// @param text  becomes what follows the separator, empty if there is none
    /// @return the part before the separator, or all of it
    static std::string MyStrTok(std::string* text, char separator);

    // ---- Files ----

    /// @return true if the path can be opened for reading, whether a file or a directory
    static bool MyPathFileExists(const std::string& path);

    /// Deletes a file, in up to five attempts with 55 seconds of `Sleep` at most between and after them.
    /// @return true if the path can't be opened for reading any more, whoever deleted it; a file that can't be read
    ///         counts as absent and stays
    static bool RetryDeleteFile(const std::string& path);

    /// Copies a file. A new target gets the mode 0774, less the umask. A file copied onto itself ends up empty.
    /// @param overwrite  false fails on a target that exists, and leaves it alone
    /// @return false if a file can't be opened, or reading or writing fails; in the latter case the target is deleted.
    ///         A write of fewer bytes than were read isn't noticed
    static bool CopyFileA(std::string source, std::string target, bool overwrite);

    // ---- System and drivers ----

    /// @return 1 if the machine was booted by EFI, that is, /sys/firmware/efi is there; otherwise 2
    static int CheckBootEnvironment();

    /// @return what `uname -r` prints; empty if that fails
    static std::string GetKernelVersion();

    /// @param package  a package's name; the command is cut to 255 characters
    /// @return the first line of `rpm -q`; empty if that fails, as for a package that isn't installed
    static std::string GetRPMInfo(const std::string& package);

    /// @return what `uname -m` prints; empty if that fails
    static std::string GetArchitectureInfo(const std::string& moduleName);

    /// Compares the initial RAM disk of the boot loader's default entry with the running kernel. The configuration is
    /// /boot/efi/EFI/redhat/grub.conf after a boot by EFI, otherwise /boot/grub/grub.conf.
    /// @return 0 the RAM disk is the running kernel's; 1 it isn't, or its name has a path in front; 255 it could
    ///         not be determined
    static int CheckRAMDISK(const std::string& moduleName);

    /// Judges a driver by its installed file, from what `modinfo -F version` prints.
    /// @param version  the version that is expected
    /// @param driver   the kernel module's name; the command is cut to 4127 characters
    /// @return 0 the driver has that version; 256 it has another one, and the default boot entry's RAM disk isn't that
    ///         of the running kernel; 1 nothing could be found out, or it has another version and the RAM disk is the
    ///         running kernel's or can't be judged
    static int DriverFileCheck(const std::string& version, const std::string& driver, const std::string& moduleName);

    // ---- PCI locations ----

    /// Takes a device's PCI location apart.
    /// @param DeviceID  bus, ":", device, ".", function, the numbers hexadecimal; "-" and anything may follow. A part
    ///                  without a hexadecimal digit counts as 0
    /// @param pciNo, devNo, funcNo  receive bus, device and function; -1 on failure
    /// @return false if a part is missing
    static bool GetPCIInfo(std::string DeviceID, int* pciNo, int* devNo, int* funcNo, const std::string& moduleName);

    /// @param DeviceID  a hexadecimal number, ":", and something after it
    /// @return the number; -1 if it has no digit or is negative as an `int`, or nothing follows the ":"
    static int GetPCISlotNo(std::string DeviceID, const std::string& moduleName);
};

#endif
