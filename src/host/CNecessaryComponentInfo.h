#ifndef KVL_HOST_CNECESSARYCOMPONENTINFO_H
#define KVL_HOST_CNECESSARYCOMPONENTINFO_H

#include <string>

/// A component that a provider needs and that is missing on this machine.
class __attribute__((visibility("default"))) CNecessaryComponentInfo {
public:
    CNecessaryComponentInfo();
    CNecessaryComponentInfo(const CNecessaryComponentInfo& other);
    CNecessaryComponentInfo& operator=(const CNecessaryComponentInfo& other);
    ~CNecessaryComponentInfo();

    std::string name;  ///< What the component is called.
};

#endif
