// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <utility>

namespace quilvane {

namespace {

constexpr std::array<std::pair<std::string_view, BenchText>, 6> kinds{ {
    { "prose", BenchText::Prose },
    { "contacts", BenchText::Contacts },
    { "dots", BenchText::DotsOnly },
    { "ats", BenchText::AtsOnly },
    { "labels", BenchText::DigitLabels },
    { "runs", BenchText::LongRuns },
} };

constexpr std::string_view words[]
    = { "the", "river", "was", "high", "that", "spring", "and", "nobody", "crossed", "it", "without",
          "asking", "first", "where", "old", "bridge", "had", "stood", "until", "someone", "remembered", "a",
          "ferry", "of", "which", "only", "two", "boards", "were", "left", "so", "they", "waited" };
constexpr std::string_view names[] = { "anna", "bela", "chen", "dora", "emil", "fatima", "goran", "hana",
    "ines", "jonas", "kirsten", "luis", "mario", "nadia", "olaf", "petra" };
constexpr std::string_view domains[]
    = { "example.org", "mail.example.com", "post.example.net", "example.co.uk" };

template <std::size_t N>
std::string_view oneOf(const std::string_view (&choices)[N], std::uint64_t number)
{
    return choices[number % N];
}

/// The one address of the person with that number.
std::string addressOf(std::uint64_t person)
{
    return std::string(oneOf(names, person)) + '.' + std::to_string(person) + '@'
        + std::string(oneOf(domains, person / 16));
}

std::string makeProse(std::size_t bytes)
{
    constexpr std::size_t addressEvery = 2048;
    std::mt19937_64 random(1);
    std::string text;
    text.reserve(bytes + addressEvery);
    std::size_t nextAddress = addressEvery;
    for (std::size_t wordCount = 1; text.size() < bytes; ++wordCount) {
        text += oneOf(words, random());
        text += wordCount % 12 == 0 ? ".\n" : " ";
        if (text.size() >= nextAddress) {
            text += addressOf(random() % (bytes / addressEvery + 1)) + ' ';
            nextAddress += addressEvery;
        }
    }
    return text;
}

std::string makeContacts(std::size_t bytes)
{
    constexpr std::size_t lineSize = 80;
    std::mt19937_64 random(2);
    const std::size_t people = 2 * (bytes / lineSize + 1);
    std::string text;
    text.reserve(bytes + lineSize);
    while (text.size() < bytes) {
        const std::uint64_t person = random() % people;
        std::string line = std::to_string(random() % 100'000) + ',' + std::string(oneOf(names, person)) + ','
            + std::string(oneOf(words, random())) + ' ' + std::string(oneOf(words, random())) + ',';
        std::string address = addressOf(person);
        if (random() % 8 == 0)
            address.front() = static_cast<char>(address.front() - 'a' + 'A');
        line += address + ",phone ";
        while (line.size() < lineSize - 1)
            line += static_cast<char>('0' + random() % 10);
        text += line + '\n';
    }
    return text;
}

std::string repeated(std::string_view unit, std::size_t bytes)
{
    std::string text;
    text.reserve(bytes + unit.size());
    while (text.size() < bytes)
        text += unit;
    return text;
}

std::string makeText(BenchText kind, std::size_t bytes)
{
    switch (kind) {
    case BenchText::Prose:
        return makeProse(bytes);
    case BenchText::Contacts:
        return makeContacts(bytes);
    case BenchText::DotsOnly:
        return repeated("a.", bytes);
    case BenchText::AtsOnly:
        return repeated("a@", bytes);
    case BenchText::DigitLabels:
        return "a@b." + repeated("c1.", bytes);
    case BenchText::LongRuns:
        return repeated("a.", bytes / 2) + '@' + repeated("b.", bytes / 2);
    }
    return {};
}

} // namespace

std::optional<BenchText> benchTextNamed(std::string_view name)
{
    const auto found
        = std::find_if(kinds.begin(), kinds.end(), [&](const auto& kind) { return kind.first == name; });
    return found == kinds.end() ? std::nullopt : std::optional(found->second);
}

std::string_view nameOf(BenchText kind)
{
    return std::find_if(kinds.begin(), kinds.end(), [&](const auto& other) {
        return other.second == kind;
    })->first;
}

std::string makeBenchText(BenchText kind, std::size_t bytes)
{
    std::string text = makeText(kind, bytes);
    text.resize(bytes);
    return text;
}

} // namespace quilvane
