#include "string/SampleText.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace bench
{

namespace
{

constexpr std::size_t SentenceCount = 8;
using Sentences = std::array<std::string_view, SentenceCount>;

constexpr Sentences English = {
    "The ferry leaves at a quarter past seven, whatever the weather has in mind. ",
    "Nobody at the station could say when the next train would come. ",
    "She had kept every letter in a tin box under the stairs. ",
    "It rained for three days, and on the fourth the bridge was gone. ",
    "Please send two copies of the report to the address given below. ",
    "He counted the steps (there were 214 of them) and sat down. ",
    "In the end, the simple answer turned out to be the right one. ",
    "Bread, salt, a little oil: that was all they had left. ",
};

constexpr Sentences GermanAndFrench = {
    "Für die Gäste wurden im Saal noch fünf Stühle und zwei Tische gebraucht. ",
    "Der Bäcker fährt früh über die Brücke, weil später dort Markt gehalten wird. ",
    "Natürlich sollte man das Fenster schließen, bevor es am Abend kälter wird. ",
    "Schöne Grüße aus dem Norden: Das Wetter ist trüb, die Stimmung heiter. ",
    "L'été dernier, nous avons dîné à la fenêtre, face à la forêt. ",
    "Les élèves préfèrent les récits où le héros échappe à un piège très rusé. ",
    "Après la réunion, le maire a déclaré que le théâtre serait réparé à temps. ",
    "Il n'a pas reçu la clé de l'hôtel, dit-elle enfin, un peu gênée. ",
};

constexpr Sentences Chinese = {
    "清晨的市场里人来人往，卖菜的老人正在摆放刚摘下的青菜。",
    "火车晚点了两个小时，大家只好坐在候车室里等待。",
    "他把旧信收在木箱里，多年以后才重新打开。",
    "雨一连下了三天，河水漫过了村口的小桥。",
    "请在下周五之前，把两份报告寄到以下地址。",
    "图书馆的灯还亮着，几个学生仍在低声讨论问题。",
    "最后大家发现：最简单的办法，往往就是最好的办法。",
    "奶奶说，“天冷了，多穿一件衣服再出门吧。”",
};

constexpr Sentences const &SentencesOf(Script script)
{
    switch (script)
    {
    case Script::Ascii:
        break;
    case Script::MixedLatin:
        return GermanAndFrench;
    case Script::Cjk:
        return Chinese;
    }
    return English;
}

} // namespace

std::string SampleText(Script script, std::size_t size)
{
    Sentences const &sentences = SentencesOf(script);
    std::string text;
    // In pseudo-random order: the branch predictor shall not find a text that repeats every few sentences.
    std::uint32_t random = 1;
    while (text.size() <= size)
    {
        random = random * 1664525 + 1013904223;
        text += sentences[(random >> 16) % SentenceCount];
    }
    auto const isContinuation = [&text](std::size_t index)
    { return (static_cast<unsigned char>(text[index]) & 0xC0) == 0x80; };
    while (isContinuation(size))
        --size;
    text.resize(size);
    return text;
}

} // namespace bench
