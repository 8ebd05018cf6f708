#pragma once

#include "favorites/Favorite.h"

#include <functional>

/// Answers as a function does.
class Evaluator : public Halvern::UI::FavoriteExpressionEvaluator
{
public:
    using Answer = std::function<QString(const Halvern::UI::Favorite&)>;
    explicit Evaluator(Answer answer)
        : m_answer(std::move(answer))
    {
    }
    QString evaluate(const Halvern::UI::Favorite& favorite) override { return m_answer(favorite); }

private:
    const Answer m_answer;
};
