#include <basicutils/text/MStringList.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace basicutils {
namespace {

// The strings joined by commas, so a whole state reads as one value.
std::u16string Join(const MStringArray& a) {
    std::u16string out;
    for (int i = 0; i < a.GetSize(); ++i) out += (i ? u"," : u"") + std::u16string(a.GetAtConst(i));
    return out;
}

// One-letter strings from "a,b,c".
MStringArray Array(std::u16string letters) {
    MStringArray a;
    for (size_t at = 0; at < letters.size(); at += 2)
        a.InsertBefore(a.GetSize(), letters.substr(at, 1).c_str());
    return a;
}

TEST(MStringArray, IndexedEditsKeepOrderAndIgnoreBadIndices) {
    using Edit = std::function<void(MStringArray&)>;
    auto before = [](int i) { return Edit([i](MStringArray& a) { a.InsertBefore(i, u"s"); }); };
    auto after = [](int i) { return Edit([i](MStringArray& a) { a.InsertAfter(i, u"s"); }); };
    auto change = [](int i, int j) { return Edit([=](MStringArray& a) { a.Change(i, j); }); };
    auto swap = [](int i, int j) { return Edit([=](MStringArray& a) { a.Swap(i, j); }); };
    auto erase = [](int i) { return Edit([i](MStringArray& a) { a.DeleteAt(i); }); };
    auto set = [](int i) { return Edit([i](MStringArray& a) { a.SetAt(i, u"s"); }); };
    // clang-format off
    struct { Edit edit; const char16_t* start; const char16_t* result; } cases[] = {
        {before(0), u"", u"s"},              {before(4), u"a,b,c,d", u"a,b,c,d,s"},
        {before(5), u"a,b,c,d", u"a,b,c,d"}, {before(-1), u"a,b", u"a,b"},
        {after(1), u"a,b,c", u"a,b,s,c"},    {after(0), u"", u""},               {after(3), u"a,b,c", u"a,b,c"},
        {change(0, 2), u"a,b,c,d", u"c,a,b,d"}, {change(2, 0), u"a,b,c,d", u"b,c,a,d"},
        {change(1, 1), u"a,b,c,d", u"a,b,c,d"}, {change(0, 4), u"a,b,c,d", u"a,b,c,d"},
        {swap(0, 3), u"a,b,c,d", u"d,b,c,a"},   {swap(0, 9), u"a,b,c", u"a,b,c"},
        {erase(0), u"a", u""},               {erase(1), u"a,b,c", u"a,c"},       {erase(3), u"a,b,c", u"a,b,c"},
        {set(2), u"a,b,c", u"a,b,s"},        {set(3), u"a,b,c", u"a,b,c"},
        {[](MStringArray& a) { a.SortByName(); }, u"c,a,b", u"c,a,b"},
    };
    // clang-format on
    for (auto& c : cases) {
        MStringArray a = Array(c.start);
        c.edit(a);
        EXPECT_EQ(Join(a), c.result) << "from " << std::u16string(c.start).size() << " letters";
    }
}

TEST(MStringArray, SizesAndBounds) {
    MStringArray a = Array(u"a,b,c,d");
    a.SetSize(3);  // nothing of the old content stays
    EXPECT_EQ(Join(a), u",,");
    EXPECT_EQ(a.GetAtConst(-1), nullptr);
    EXPECT_EQ(a.GetAtConst(3), nullptr);
    a.SetSize(-2);
    EXPECT_EQ(a.GetSize(), 0);
    MStringArray five(5);
    five.SetAt(4, MString(u"x"));
    MStringArray copy(five);
    five.SetAt(4, u"y");
    EXPECT_EQ(Join(copy), u",,,,x");
}

TEST(MStringList, CursorFollowsReadsAndCopiesShareNothing) {
    MStringList list, other;
    list.AddArray(Array(u"a,b,c,d"));
    EXPECT_EQ(std::u16string(*list.GetAt(1)), u"b");
    EXPECT_EQ(std::u16string(*list.GetNext()), u"c") << "GetAt moved the cursor";
    EXPECT_EQ(list.GetAt(4), nullptr);
    list.DeleteAt(1);
    list.DeleteAt(3);  // out of range: nothing
    other.Add(u"z");
    other.AddList(&list);
    other.AddList(&other);  // itself: nothing
    MStringArray a;
    a = other;
    EXPECT_EQ(Join(a), u"z,a,c,d");
    MStringList back;
    back.Add(u"old");
    back = a;
    list = back;
    *back.GetHead() = u"changed";
    a = list;
    EXPECT_EQ(Join(a), u"z,a,c,d");
    list.AddFormat(u"take %d of %s", 5, u"six");
    EXPECT_EQ(std::u16string(*list.GetTail()), u"take 5 of six");
    list.DeleteAll();
    EXPECT_EQ(list.GetHead(), nullptr);
}

}  // namespace
}  // namespace basicutils
