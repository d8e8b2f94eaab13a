#pragma once

#include <QStringList>
#include <optional>

namespace halvane {

// Small modal questions that want more than Yes or No: a line of text, or
// one entry of a list. Empty when the operator cancelled.
class Prompts {
public:
    virtual ~Prompts() = default;
    virtual std::optional<QString> askText(const QString& title, const QString& label,
                                           const QString& initial) = 0;
    virtual std::optional<QString> choose(const QString& title, const QString& label,
                                          const QStringList& entries) = 0;
};

class QtPrompts : public Prompts {
public:
    std::optional<QString> askText(const QString& title, const QString& label,
                                   const QString& initial) override;
    std::optional<QString> choose(const QString& title, const QString& label,
                                  const QStringList& entries) override;
};

// Recording stand-in: answers in order, cancelled when none is left.
class FakePrompts : public Prompts {
public:
    struct Asked {
        QString title, label;
        QStringList entries; // the list offered, empty for a text
    };
    std::optional<QString> askText(const QString& title, const QString& label,
                                   const QString&) override {
        asked.append({title, label, {}});
        return next();
    }
    std::optional<QString> choose(const QString& title, const QString& label,
                                  const QStringList& entries) override {
        asked.append({title, label, entries});
        return next();
    }
    QList<Asked> asked;
    QList<std::optional<QString>> answers;

private:
    std::optional<QString> next() { return answers.isEmpty() ? std::nullopt : answers.takeFirst(); }
};

} // namespace halvane
