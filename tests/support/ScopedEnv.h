/// \file
/// An environment variable set (or unset) for the life of a scope: the old
/// value comes back, or the variable goes again, when the scope ends, also when
/// an assertion leaves the test early.
#pragma once

#include <QByteArray>
#include <QtGlobal>

class ScopedEnv {
public:
    /// Sets name to value.
    ScopedEnv(const char* name, const QByteArray& value)
        : ScopedEnv(name)
    {
        qputenv(m_name, value);
    }
    /// Unsets name.
    explicit ScopedEnv(const char* name)
        : m_name(name)
        , m_wasSet(qEnvironmentVariableIsSet(name))
        , m_old(qgetenv(name))
    {
        qunsetenv(name);
    }
    ~ScopedEnv()
    {
        if (m_wasSet)
            qputenv(m_name, m_old);
        else
            qunsetenv(m_name);
    }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    const char* m_name;
    bool m_wasSet;
    QByteArray m_old;
};
