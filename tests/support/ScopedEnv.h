/// \file
/// An environment variable set (or unset) for the life of a scope: the old
/// value comes back, or the variable goes again, when the scope ends, also when
/// an assertion leaves the test early.
#pragma once

#include <QByteArray>
#include <QtGlobal>
#include <optional>

class ScopedEnv {
public:
    /// Sets name to value, or unsets it without one.
    explicit ScopedEnv(const char* name, const std::optional<QByteArray>& value = std::nullopt)
        : m_name(name)
        , m_old(qEnvironmentVariableIsSet(name) ? std::optional<QByteArray>(qgetenv(name)) : std::nullopt)
    {
        Set(value);
    }
    ~ScopedEnv() { Set(m_old); }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    void Set(const std::optional<QByteArray>& value) { value ? qputenv(m_name, *value) : qunsetenv(m_name); }

    const char* m_name;
    std::optional<QByteArray> m_old;
};
