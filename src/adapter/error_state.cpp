#include <cerrno>
#include <cstring>

#include "adapter/CEmulexCommon.h"
#include "adapter/error_codes.h"
#include "foundation/text.h"

std::uint32_t CEmulexCommon::m_dwLastError = 0;

void CEmulexCommon::SetLastError(unsigned long code) {
    m_dwLastError = static_cast<std::uint32_t>(code);
}

unsigned long CEmulexCommon::GetLastError() {
    return m_dwLastError;
}

std::string CEmulexCommon::GetLastErrorToChractor() {
    return m_dwLastError > kvl::kVersionsDiffer ? "no errcode" : kvl::formatText("%x", m_dwLastError);
}

std::string CEmulexCommon::GetLastErrorExplanation() {
    return std::strerror(errno);
}
