#pragma once

#include "favorites/Favorite.h"

#include <functional>

/// Answers as a function does.
struct Evaluator : Halvern::UI::FavoriteExpressionEvaluator
{
    explicit Evaluator(std::function<QString(const Halvern::UI::Favorite&)> answer)
        : m_answer(std::move(answer))
    {
    }
    QString evaluate(const Halvern::UI::Favorite& favorite) override { return m_answer(favorite); }

    const std::function<QString(const Halvern::UI::Favorite&)> m_answer;
};
