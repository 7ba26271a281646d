#ifndef KVL_ADAPTER_CEMULEXCOMMON_H
#define KVL_ADAPTER_CEMULEXCOMMON_H

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <utility>

#include "host/CNecessaryComponentInfo.h"

/// The module of an adapter whose version is meant.
enum EMULEX_MODULE_KIND : int {
    EMULEX_MODULE_FIRMWARE = 0,      ///< Adapter firmware.
    EMULEX_MODULE_DRIVER = 1,        ///< Adapter driver.
    EMULEX_MODULE_OCM = 2,           ///< The management tool.
    EMULEX_MODULE_UNVERSIONED = 3,   ///< A module without an operating version.
    EMULEX_MODULE_BOOT_BIOS = 4,     ///< Boot code. Its versions are never compared.
    EMULEX_MODULE_COMPARE_ONLY = 5,  ///< Known to the comparison only.
};

/// Makes a device identifier usable in a file name. @return `DeviceID` with "_" for each "/"
__attribute__((visibility("default"))) std::string CONVERT_DEVID(std::string DeviceID);

/// The procedures for Emulex adapters. All operations are static. Only the search of `LatestFile` is locked: two
/// procedures must not run at once, in two threads of one process or in two processes.
///
/// An operation blocks the caller's thread until it is done. It waits for a command without a limit, and ten seconds
/// more for a command whose output goes into a file and that prints nothing. Where it waits for something else, its
/// comment says for how long. Only `GetLastError` and its kin, `CONVERT_DEVID` and `CheckVendorVersion` wait for
/// nothing.
///
/// An operation that reports failure leaves the cause in the last error, as far as it names codes; error_codes.h lists
/// them. Nothing clears it, so after a success, or a failure without a code, it still holds an earlier failure.
///
/// `moduleName` goes first into every trace line, but for the start line of `GetVenderIdList`, where "cna" does. It
/// also selects the adapter family: "cna", or FC for any other text. A few rules hold for the text "fc" alone;
/// they say so.
///
/// The working tree lies in tmp/EMULEX below the install directory. `hbacmd` is the management tool at
/// /usr/sbin/ocmanager/hbacmd. Its list and its dumps are read line by line, where a line of more than 255 characters
/// counts as several; the lines of an updater's output and of a message file have any length.
class __attribute__((visibility("default"))) CEmulexCommon {
public:
    // ---- Last error ----

    static std::uint32_t m_dwLastError;  ///< The last error; 0 when the library is loaded.

    /// Stores a code as the last error.
    static void SetLastError(unsigned long code);

    /// @return the last error
    static unsigned long GetLastError();

    /// @return the last error in lower-case hexadecimal; "no errcode" above 38
    static std::string GetLastErrorToChractor();

    /// @return the C library's text for the current `errno`; the last error plays no part
    static std::string GetLastErrorExplanation();

    // ---- Tool and working tree ----

    /// Finds no folder on this system.
    /// @param path  stays as it is
    /// @return true; false for a null `path` (code 1)
    static bool GetProgramFilesFolder_(std::string* path, std::string moduleName);

    /// Looks for `hbacmd`.
    /// @param path  receives its path; untouched on failure
    /// @return true if it is installed; codes 1 for a null `path`, 11
    static bool GetOCMManagerInstallPath(std::string* path, std::string moduleName);

    /// @return the components that are missing, which can only be "One Command Manager" (code 11)
    static std::list<CNecessaryComponentInfo> NecessaryComponentCheck(std::string moduleName);

    /// Makes the working tree: cache and temp, each with FC and CNA.
    /// @return false at the first directory that can't be made (codes 18 below cache, 19 below temp); those before it
    ///         stay
    static bool CreateLocalDirectory();

    /// Runs a command line through the shell, without the double quotes in it. If the line holds " > ", all that
    /// follows is the name of the result file, and the call waits for output: up to ten looks, a second apart.
    /// @return 0 on success; -1 if the command can't be run, exits with a status other than 0, or leaves no result file
    ///         or an empty one; for a line without " > " that a signal ended, what `system` returned. Sets no code
    static int ExecCommand_(std::string command, std::string moduleName);

    // ---- Report files ----

    /// Reads the value of a key from the first line that holds one of the keys and, after it, the separator and
    /// something other than a blank.
    /// @param keys       alternatives, "|" between them: the first of them that a line holds counts for that line
    /// @param separator  searched from the start of the key
    /// @param result     receives the key as spelled in `keys` and the value, without blanks around it; both empty
    ///                   if there is none
    /// @param count      how many lines that hold a key to skip first
    /// @return false if the file can't be opened (code 17)
    static bool GetKeyValueFromFile_(std::string file, std::string keys, std::string separator,
                                     std::pair<std::string, std::string>& result, std::string moduleName,
                                     unsigned int count);

    /// Reads the value of a key from the lines that follow a line with one of the tags. The file is read to its end:
    /// once there is a value, only one line is looked at after each further line with a tag, and a value there
    /// replaces the earlier one.
    /// @param tags   alternatives, "|" between them. Each that a line holds starts a search after that line,
    ///               or after the line where the search before it ended
    /// @param count  how many lines with a tag to skip first
    /// @return false if the file can't be opened (code 17); the other arguments are those of `GetKeyValueFromFile_`
    static bool GetTagKeyValueFromFile_(std::string file, std::string tags, std::string keys, std::string separator,
                                        std::pair<std::string, std::string>& result, std::string moduleName,
                                        unsigned int count);

    /// Checks whether a dump file describes a port, by its line "Port WWPN/MAC: " (CNA) or "Port WWN: " (FC).
    /// @param id  the port's address, spelled as in the file
    /// @return false if there is no such line, or the file can't be opened (code 17)
    static bool CheckDumpFileKeyWord_(std::string file, std::string id, std::string moduleName);

    /// Finds the last modified file of a directory, with /bin/ls into temp/fsresult of the working tree.
    /// @param pattern  expanded by the shell, as `directory` is
    /// @return its path; among files of the same time the one listed first; empty if nothing matches with a time
    ///         above 0, or if the listing fails or can't be read. Sets no code
    static std::string LatestFile(std::string directory, std::string pattern, std::string moduleName);

    // ---- Device catalogue: CnaVCFac.ini and FcVCFac.ini in the install directory ----

    /// Lists the supported device numbers. The lists are appended to.
    /// @param iniFile  selects the catalogue by the name anywhere in it, CnaVCFac.ini looked for first. The file in
    ///                 the install directory is read. Without either name nothing is listed
    /// @param list0    CNA: numbers of the vendors 19A2 and 10DF that end in 0; the FC catalogue leaves the three
    ///                 lists untouched
    /// @param list2    CNA: numbers that end in 2
    /// @param list4    CNA: numbers that end in 4
    /// @param fcList   FC: whole device fields, their prefix included; untouched by the CNA catalogue
    /// @return true
    static bool GetDeviceIdList(std::string iniFile, std::list<std::string>* list0, std::list<std::string>* list2,
                                std::list<std::string>* list4, std::list<std::string>* fcList, std::string moduleName);

    /// Lists the supported devices as hardware identifiers, as in PCI\VEN_10DF&DEV_F100. The lists are appended to.
    /// @param iniFile  as above
    /// @param list0    CNA: devices of the vendors 19A2 and 10DF whose number ends in 0
    /// @param list2    never used
    /// @param list4    never used
    /// @param fcList   FC: all devices of the vendor 10DF
    /// @return true
    static bool GetVenDevIdList(std::string iniFile, std::list<std::string>* list0, std::list<std::string>* list2,
                                std::list<std::string>* list4, std::list<std::string>* fcList, std::string moduleName);

    /// Lists the vendor numbers of the CNA catalogue, only 19A2 and 10DF, once for each of their entries.
    /// @param list  appended to
    /// @return true
    static bool GetVenderIdList(std::list<std::string>* list, std::string moduleName);

    // ---- Adapter list: the output of `hbacmd listhbas` in temp/Listhbas.txt of the working tree ----

    /// Reads one record per port, with up to six keys: "Port WWN" or "Permanent MAC", "Port Number", "PCI Bus Number",
    /// "PCI Function", "Port Type" and "Serial No.". The nth occurrence of a key belongs to the nth port, so a port
    /// that lacks one takes the next port's. The caller has run `hbacmd listhbas`; the file is read six times per port.
    /// @param list  emptied first; on failure it keeps the records made so far
    /// @return true with at least one record; codes 1 for a null `list`, 15 for none, 17
    static bool GetHBAInfoList(std::list<std::map<std::string, std::string>>* list, std::string moduleName);

    /// Finds the port at a PCI location. `hbacmd` counts two functions per device, or eight on a bus where it shows a
    /// function above 7. Only the first digit of a bus decides this, so a bus from 10 on always counts two.
    /// @param DeviceID  bus:device.function-rest, in hexadecimal
    /// @param info      emptied first; receives the record
    /// @return false if there is none: codes 1 for a null `info`, 13 for a wrong `DeviceID`, 14, 15 and 17
    /// @throws std::out_of_range "basic_string::substr" for a bus or function line of under 17 characters
    static bool GetHBAInfo(std::string DeviceID, std::map<std::string, std::string>* info, std::string moduleName);

    // ---- Versions ----

    /// Reads the version that runs now from a cached dump of the adapter. If there is none, `hbacmd` makes one in up
    /// to three tries. After each try without a hit come a wait of one second and a new adapter list.
    /// @param DeviceID      as for `GetHBAInfo`; names the cached dump too
    /// @param version       receives the version: empty for EMULEX_MODULE_UNVERSIONED; for the firmware of "fc" up to
    ///                      the first "(", without blanks at its end; untouched on failure
    /// @param forceRefresh  has a new dump made
    /// @return false on failure: codes 1 for a null `version`, 5 to 9, 11, those of `GetHBAInfo`, or none if `hbacmd`
    ///         itself failed
    /// @throws std::out_of_range as `GetHBAInfo` does
    static bool GetOperatingVersion(std::string DeviceID, EMULEX_MODULE_KIND kind, std::string* version,
                                    bool forceRefresh, std::string moduleName);

    /// Clears up after an update that left its marker, UpdateProceeding.txt: deletes the marker. The cached dumps
    /// survive.
    /// @param directory  where the marker is
    /// @return false if the marker can't be deleted (code 1); true also without one, with code 17
    static bool DelOperatingVersion_(std::string directory, std::string moduleName);

    /// Compares two versions: of two fields for the firmware of "fc", as in 2.72a2, and of four numbers, with a tail
    /// after the last, for all others. Looks nothing up. Code 38 marks a difference, except in the letters in the
    /// middle of a two-field version.
    /// @param kind  EMULEX_MODULE_BOOT_BIOS and unknown kinds aren't compared
    /// @return positive if `version2` is the newer, negative if it is the older; 0 if they are equal or not compared,
    ///         or if one has the wrong form (code 30, and an operator message)
    static int CheckVendorVersion(std::string version1, std::string version2, EMULEX_MODULE_KIND kind,
                                  std::string moduleName);

    // ---- Extended information ----

    /// Describes a port for an operator, as names and values in this order: "MAC Address" (iSCSI and NIC ports) or
    /// "WWPN" (FCoE and FC ports), both empty for another type; "Bus/Dev/Func" in decimal; for NIC ports "I/F Name"
    /// from `CNetworkParameter::GetIfName`, whose exception passes through.
    /// @param info  emptied first
    /// @return false on failure: codes 1 for a null `info`, and those of `GetHBAInfo`
    /// @throws std::out_of_range as `GetHBAInfo` does
    static bool GetExtendedInfo(std::string DeviceID, std::list<std::pair<std::string, std::string>>* info,
                                std::string moduleName);

    // ---- Running updaters ----

    /// Runs an updater without a limit of time and judges its outcome. What it has changed stays, however it is judged.
    /// @param command      a text for `sh -c`
    /// @param resultFile   an absolute path; created or emptied; receives its standard output
    /// @param workDir      where it runs; empty for here
    /// @param returnCode   not null; receives its exit status: 255 if it could not be started or a signal ended it,
    ///                     1 also if the result file can't be opened or `workDir` can't be entered
    /// @param reportDir    where it leaves a report, whose files *.txt are deleted first; empty: nothing is deleted
    /// @param messageFile  for the rules 3 and 4: a text file of lines "SuccessMessage=" and "EndMessage=", up to five
    ///                     each. The output must come to hold an end text, where there is one, in up to 150 seconds,
    ///                     and must hold a success text
    /// @param Resultmode   the rule: 1 the exit status is 0; 2 the output's first line is "0"; 3 the output holds the
    ///                     texts; 4 the only report holds them, of several all are deleted and it fails. Any other
    ///                     number fails after the run, without a code
    /// @return true if the rule is met; codes 17 (it could not be started or waited for, or a signal ended it; rule 2:
    ///         the result file can't be opened; rules 3 and 4: `messageFile` is empty) and 33 (any other failure); none
    ///         if rule 4 finds no report
    static bool EmulexUpdate(std::string command, std::string resultFile, std::string workDir,
                             unsigned long* returnCode, std::string reportDir, std::string messageFile, int Resultmode,
                             std::string moduleName);

    /// Judges an updater's output by a message file, as `EmulexUpdate` does: looks for an end text, where there is one,
    /// every 30 seconds up to five times, the first time after 30 seconds, and then for a success text.
    /// @return true if both are found; codes 17 (a file can't be opened), 36 (no end text), 37 (no success text), or
    ///         none for a message file without a success text
    static bool CheckUpdateResult_(std::string resultFile, std::string messageFile, std::string moduleName);

    /// Leaves the marker of an update, UpdateProceeding.txt, an empty file. One that is there stays as it is.
    /// @param directory  where `DelOperatingVersion_` will look for it
    /// @return false if it can't be made (code 17)
    static bool UpdateProceedingFileCreate_(std::string directory, std::string moduleName);

    // ---- Updates ----

    /// Updates the firmware, and boot code where the family has it, of one adapter function from an update module, by
    /// `hbacmd Download`. Boot code goes first; if it fails, the firmware is not touched. Without a
    /// message file in the module the firmware is sent up to four times, until the tool prints "Download Complete";
    /// boot code without one fails when it has been sent. The tool's output goes into
    /// temp/CNA/firm/temp_hbacmd_Download.txt of the working tree, or temp/FC/firm: the caller makes that directory.
    /// @param DeviceID     as for `GetHBAInfo`; the caller has run `hbacmd listhbas`
    /// @param moduleDir    where the module's files lie
    /// @param unzipFolder  is deleted first, receives the unpacked module, and is deleted after a success
    /// @param hbacmdPath   the tool
    /// @param moduleFiles  not null: names of the module's files; the first that holds ".zip" is unpacked
    /// @param uniqueName   the family: OCe11102, OCl14104, fcelx_16g, fcelx_8g1p, or a name that begins with
    ///                     fcelx_8g2p. The first three are updated only through function 0
    /// @return true if updated, or skipped since the function isn't 0, as it also is for an unknown family; codes 13,
    ///         15 to 17, 19, 26 to 29. The code 28 can mean that only the folder is left over
    /// @throws std::out_of_range as `GetHBAInfo` does
    static bool FwUpdate(std::string DeviceID, std::string moduleDir, std::string unzipFolder, std::string hbacmdPath,
                         std::list<std::string>* moduleFiles, bool unused, std::string moduleName,
                         std::string uniqueName);

    /// Checks whether the management tool is as a silent install left it: by the settings in /etc/emulexDiscConfig
    /// and /etc/emulexRMConfig, and by a search of `rpm -qa` for "elxocmjvm-", ten characters and "rpm", whose exit
    /// status goes into temp/rpm_grep_result.txt of the working tree and must not be 0.
    /// @param ModuleKind  only for the trace
    /// @return true if so, also where `rpm` or `grep` fails; false if not, or if the shell fails or a file can't be
    ///         opened: code 17 for a settings file, none otherwise
    static bool OCMInstallCheck(std::string unused, std::string ModuleKind, std::string moduleName);

    /// Replaces the management tool by the one in an update module: runs uninstall.sh and then install.sh -q from the
    /// directory x86 or x64 of the module, judged by message.txt there. Their outputs go into
    /// temp/temp_ocm_uninstall.txt and temp/temp_ocm_install.txt of the working tree; while the latter exists, even
    /// from an install that failed, every further call is skipped. The module stays unpacked in temp/tmp.
    /// @param moduleDir    where the module's files lie
    /// @param moduleFiles  not null: their names; the first that holds ".zip" is unpacked
    /// @return true if updated or skipped; codes 19, 26 and 28, each with an operator message, 17 (a script failed) and
    ///         29 (a script is missing), after either of which the old tool may be gone, or none for a machine that is
    ///         neither x86 nor x64
    static bool OCMUpdate(std::string unused1, std::string moduleDir, std::list<std::string>* moduleFiles, bool unused2,
                          std::string moduleName);

    // ---- Marked updates: SequentialUpdateFile_NIC.txt, _FCoE.txt and _iSCSI.txt in temp of the working tree ----

    /// Marks a kind of update. The mark outlasts the process.
    /// @param kind  1 NIC, 2 FCoE, 3 iSCSI; nothing is marked for another number, which is no error
    /// @return false if the marker file can't be opened (code 17)
    static bool SequentialUpadateFileWrite(int kind, std::string unused1, std::string unused2, std::string moduleName);

    /// Returns the marked kinds and deletes all marks, except one that can't be read. One that can't be deleted costs
    /// up to 55 seconds of `Sleep`.
    /// @param kinds  receives "NIC", "FCoE" and "iSCSI", in this order, as far as they are marked, and nothing else
    /// @return false if a mark can't be deleted: it stays, as those after it do, and `kinds` has what was found.
    ///         Code 17 reports each kind that isn't marked or can't be read, also after a success
    static bool SequentialUpadateFileRead(std::list<std::string>* kinds, std::string moduleName);

    // ---- Boot files ----

    /// Has `depmod -a` prefer the updated drivers: adds the override lines to elxbe2net.conf, elxlpfc.conf and
    /// elxbe2iscsi.conf in /etc/depmod.d, unless a file holds "override" and the driver's name anywhere, a comment
    /// included, and runs it. Without a driver nothing is done.
    /// @return false if a file can't be opened (code 17), which stops neither the other files nor `depmod`,
    ///         or if `depmod` fails (no code)
    static bool DepmodExecute(bool be2netOverride, bool lpfcOverride, bool be2iscsiOverride, std::string moduleName);

    /// Rebuilds the initial RAM disk of the running kernel, where the first line of /etc/redhat-release holds "release
    /// 6", as that of a release 60 would: moves it to /boot/initramfs-`uname -r`.img.org and runs `dracut`.
    /// @return true if done, or if there is nothing to do on this release or on one that can't be read; false if a
    ///         command fails (no code). If `dracut` fails, the kernel is left without its image: nothing moves it back
    static bool DracutExcute(std::string moduleName);
};

#endif
