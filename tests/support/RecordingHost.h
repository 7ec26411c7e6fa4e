/// \file
/// A host for tests: records every call, answers okCancel as told, and can
/// clear an InProcess flag after a given number of yields (to test Stop).
#pragma once

#include "grammar/Host.h"
#include "support/QtPrinters.h"

#include <QStringList>
#include <functional>
#include <vector>

class RecordingHost final : public Host {
public:
    void critical(const QString& text) override { criticals << text; }
    void information(const QString& text) override { informations << text; }
    bool okCancel(const QString& text) override
    {
        questions << text;
        return okAnswer;
    }
    void yield() override;
    void status(StatusField field, const QString& text) override { statuses.push_back({field, text}); }

    /// Every message of any kind, in order of arrival.
    QStringList Messages() const { return criticals + informations + questions; }

    QStringList criticals;
    QStringList informations;
    QStringList questions;
    std::vector<std::pair<StatusField, QString>> statuses;
    long yields = 0;
    bool okAnswer = true;

    /// When set, called at the yield numbered stopAfter (1-based); tests use it to press Stop.
    long stopAfter = 0;
    std::function<void()> stop;
};
