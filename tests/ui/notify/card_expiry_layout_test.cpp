// What the expiry notice shows, and where.
#include <array>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "ui/dialogs/enlarged_dialogs.h"
#include "ui/notify/card_expiry_fixture.h"

namespace mvp::test {
namespace {

constexpr char kConfigKey[] = R"(SOFTWARE\Quillon\Veskara\GlobalConfig)";
constexpr int kControls[] = {IDC_CARD_EXPIRY_HEADING,
                             IDC_CARD_EXPIRY_SENTENCE,
                             IDC_CARD_EXPIRY_LIST_LABEL,
                             IDC_CARD_EXPIRY_LIST,
                             IDC_CARD_EXPIRY_REMIND,
                             IDC_CARD_EXPIRY_DAYS,
                             IDC_CARD_EXPIRY_SPIN,
                             IDC_CARD_EXPIRY_DAYS_LABEL,
                             IDC_CARD_EXPIRY_NEVER_AGAIN,
                             IDC_CARD_EXPIRY_SEPARATOR,
                             IDOK,
                             IDCANCEL};
const std::set<int> kListPart = {IDC_CARD_EXPIRY_LIST_LABEL, IDC_CARD_EXPIRY_LIST};
const std::set<int> kReminderPart = {IDC_CARD_EXPIRY_REMIND,      IDC_CARD_EXPIRY_DAYS,
                                     IDC_CARD_EXPIRY_SPIN,        IDC_CARD_EXPIRY_DAYS_LABEL,
                                     IDC_CARD_EXPIRY_NEVER_AGAIN, IDOK};

using CardExpiryForm = LibraryTest;

constexpr __time64_t kSoon = kNow + kDay;
constexpr __time64_t kPast = kNow - kDay;
// The runtime knows no date before 1970, nor behind the year 3000.
constexpr __time64_t kDateless = 9'000'000'000'000'000'000;

// The line about the card: the static without a number.
HWND CardLineOf(HWND hDialog) {
    HWND line = nullptr;
    do {
        line = FindWindowExA(hDialog, line, "Static", nullptr);
    } while (line != nullptr && GetDlgCtrlID(line) != 0xFFFF);
    return line;
}

// Every control's place in the client area, and under 0 the size of the dialog.
std::map<int, CRect> PlacesOf(HWND hDialog) {
    std::map<int, CRect> places;
    for (const int id : kControls) {
        places[id] = RectIn(hDialog, GetDlgItem(hDialog, id));
    }
    GetClientRect(hDialog, &places[0]);
    return places;
}

TEST_F(CardExpiryForm, FitsWhatItTells) {
    struct Case {
        Told told;
        bool bHasExpired;
        std::string strLine;  // about the card; empty: none
    };
    const std::string expires = Filled(IDS_CARD_EXPIRY_EXPIRES_FORMAT, "05/18/31");
    const std::string expired = TextOf(IDS_CARD_EXPIRY_EXPIRED);
    std::map<int, CRect> plain;
    const auto look = [&](Dialog& d, const Case& expected) {
        std::map<int, CRect> places = PlacesOf(d.Handle());
        if (plain.empty()) {
            plain = places;
        }
        const bool isCardTold = expected.told.card != 0;
        const bool isListed = !expected.told.certificates.empty();
        const int list = plain[IDC_CARD_EXPIRY_LIST].Height();
        const int reminder =
            plain[IDC_CARD_EXPIRY_NEVER_AGAIN].bottom - plain[IDC_CARD_EXPIRY_DAYS].top;
        for (const int id : kControls) {
            const bool isUpper = id == IDC_CARD_EXPIRY_HEADING || id == IDC_CARD_EXPIRY_SENTENCE;
            const bool isBelow = id == IDCANCEL || id == IDC_CARD_EXPIRY_SEPARATOR || id == IDOK;
            const int dy = (isCardTold && !isUpper ? 30 : 0) -
                           (!isListed && !isUpper && !kListPart.contains(id) ? list + 20 : 0) -
                           (expected.bHasExpired && isBelow ? reminder : 0);
            CRect place = plain[id];
            place.OffsetRect(0, dy);
            EXPECT_EQ(places[id], place) << id << " moves by " << dy;
            const bool isHidden = (!isListed && kListPart.contains(id)) ||
                                  (expected.bHasExpired && kReminderPart.contains(id));
            EXPECT_NE(d.IsVisible(id), isHidden) << id;
        }
        EXPECT_EQ(places[0].Height() - plain[0].Height(),
                  (isCardTold ? 30 : 0) - (isListed ? 0 : list + 20) -
                      (expected.bHasExpired ? reminder : 0));
        const HWND line = CardLineOf(d.Handle());
        EXPECT_EQ(line != nullptr, isCardTold);
        d.Run([&] {
            if (line != nullptr) {
                EXPECT_EQ(RectIn(d.Handle(), line), CRect(12, 80, 362, 100));
                EXPECT_EQ(Control::Of(line).strText, expected.strLine);
                EXPECT_EQ(SendMessageA(line, WM_GETFONT, 0, 0),
                          d.Send(IDC_CARD_EXPIRY_HEADING, WM_GETFONT));
            }
        });
        EXPECT_EQ(d.Text(IDCANCEL),
                  expected.bHasExpired ? TextOf(IDS_CARD_EXPIRY_CLOSE) : "Cancel");
        EXPECT_EQ(d.FocusedId(), expected.bHasExpired ? IDCANCEL
                                 : isListed           ? IDC_CARD_EXPIRY_LIST
                                                      : IDC_CARD_EXPIRY_REMIND);
        EXPECT_EQ(d.Send(IDC_CARD_EXPIRY_LIST, LVM_GETITEMCOUNT),
                  std::ssize(expected.told.certificates));
        if (isListed) {
            d.Focus(IDC_CARD_EXPIRY_LIST);
        }
        d.Enter();
    };
    const std::vector<Certificate> valid = {{"a", kSoon}, {"b", kNow}};
    const std::vector<Certificate> mixed = {{"a", kSoon}, {"b", kNow - 1}};
    const Case cases[] = {
        {{.certificates = valid}, false, ""},  // first: the others are compared with it
        {{.certificates = mixed}, true, ""},
        {{.card = kSoon}, false, expires},
        {{.card = kDateless}, false, Filled(IDS_CARD_EXPIRY_EXPIRES_FORMAT, "")},
        {{.card = kSoon, .certificates = valid}, false, expires},
        {{.card = kSoon, .certificates = {1000, {"a", kSoon}}}, false, expires},
        {{.card = kSoon, .certificates = mixed}, true, expires},
        {{.card = kNow}, true, expired},
        {{.card = kPast, .certificates = valid}, true, expired},
        {{.card = kPast, .certificates = mixed}, true, expired},
    };
    for (const Case& expected : cases) {
        const auto script = [&](Dialog& d) { look(d, expected); };
        EXPECT_EQ(expected.told.ShowAtNow({script}), expected.bHasExpired ? IDCANCEL : IDOK);
    }
}

// Of the images and of their masks, with the number of bits that each takes.
std::string PixelsOf(HIMAGELIST hImages) {
    IMAGEINFO info{};
    ImageList_GetImageInfo(hImages, 0, &info);
    std::string all = std::to_string(ImageList_GetImageCount(hImages));
    for (HBITMAP bitmap : {info.hbmImage, info.hbmMask}) {
        BITMAP form{};
        GetObjectA(bitmap, sizeof form, &form);
        std::string pixels(static_cast<std::size_t>(form.bmWidthBytes * form.bmHeight), '\0');
        GetBitmapBits(bitmap, static_cast<LONG>(pixels.size()), pixels.data());
        all += " " + std::to_string(form.bmBitsPixel) + ":" + pixels;
    }
    return all;
}

int ImageOf(Dialog& d, int nRow) {
    LVITEMA item{};
    item.mask = LVIF_IMAGE;
    item.iItem = nRow;
    d.Run([&] {
        SendMessageA(d.Control(IDC_CARD_EXPIRY_LIST), LVM_GETITEMA, 0,
                     reinterpret_cast<LPARAM>(&item));
    });
    return item.iImage;
}

TEST_F(CardExpiryForm, ListsWhatExpiresFirstFirst) {
    const std::string longName(1000, 'n');
    const Told told{.certificates = {{"later", kNow + 40 * kDay},
                                     {"\xC9t\xE9", kSoon},
                                     {longName.c_str(), kSoon},
                                     {"", kNow},
                                     {"gone", kPast},
                                     {"old", -kDay},
                                     {"never", 4'102'488'000},
                                     {"no date", kDateless}}};
    const std::string suffix = TextOf(IDS_CARD_EXPIRY_DATE_EXPIRED);
    const std::tuple<std::string, std::string, int> rows[] = {
        {"old", suffix, 1},           {"gone", "05/16/31" + suffix, 1},
        {"", "05/17/31", 0},          {longName, "05/18/31", 0},
        {"\xC9t\xE9", "05/18/31", 0}, {"later", "06/26/31", 0},
        {"never", "01/01/00", 0},     {"no date", "", 0}};
    const auto look = [&](Dialog& d) {
        constexpr int kList = IDC_CARD_EXPIRY_LIST;
        int row = 0;
        for (const auto& [name, date, image] : rows) {
            // A list shows, and gives out, no more than it was made for of a very long name.
            const std::string cell = CellOf(d, row, 0);
            EXPECT_TRUE(name.starts_with(cell) && (cell == name || cell.size() >= 259)) << cell;
            EXPECT_EQ(CellOf(d, row, 1), date) << name;
            EXPECT_EQ(ImageOf(d, row++), image) << name;
        }
        EXPECT_EQ(d.Send(kList, LVM_GETEXTENDEDLISTVIEWSTYLE) & LVS_EX_LABELTIP, LVS_EX_LABELTIP);
        d.Run([&] {
            const HWND list = d.Control(kList);
            CImageList images;
            images.Create(16, 16, ILC_COLOR24 | ILC_MASK, 2, 1);
            images.Add(LoadResourceIcon(IDI_CERTIFICATE_VALID, 16));
            images.Add(LoadResourceIcon(IDI_CERTIFICATE_EXPIRED, 16));
            const LRESULT shown = SendMessageA(list, LVM_GETIMAGELIST, LVSIL_SMALL, 0);
            EXPECT_TRUE(PixelsOf(reinterpret_cast<HIMAGELIST>(shown)) == PixelsOf(images));
            for (const auto& [column, title] :
                 {std::pair<WPARAM, UINT>{0, IDS_CARD_EXPIRY_NAME_COLUMN},
                  {1, IDS_CARD_EXPIRY_DATE_COLUMN}}) {
                std::array<char, 100> text{};
                LVCOLUMNA info{};
                info.mask = LVCF_TEXT;
                info.pszText = text.data();
                info.cchTextMax = static_cast<int>(text.size());
                SendMessageA(list, LVM_GETCOLUMNA, column, reinterpret_cast<LPARAM>(&info));
                EXPECT_EQ(text.data(), TextOf(title));
            }
        });
        d.Escape();
    };
    EXPECT_EQ(told.ShowAtNow({look}), IDCANCEL);
}

int WINAPI TakeNoTick(HIMAGELIST hImages, int nImage, HICON hIcon) {
    const bool isTick = hIcon == LoadResourceIcon(IDI_CERTIFICATE_VALID, 16);
    return isTick ? -1 : ImageList_ReplaceIcon(hImages, nImage, hIcon);
}

TEST_F(CardExpiryForm, CrossesOutNothingValidWhenTheTickIsMissing) {
    const PatchedImports lists("dlgfw.dll", {{"ImageList_ReplaceIcon", Address(&TakeNoTick)}});
    const auto look = [](Dialog& d) {
        EXPECT_EQ(ImageOf(d, 0), 0);
        EXPECT_EQ(ImageOf(d, 1), I_IMAGENONE);
        d.Escape();
    };
    EXPECT_EQ((Told{.certificates = {{"a", kPast}, {"b", kSoon}}}.ShowAtNow({look})), IDCANCEL);
}

TEST_F(CardExpiryForm, TakesTheAdministratorsSentence) {
    std::string own;
    const auto read = [&](Dialog& d) {
        own = d.Text(IDC_CARD_EXPIRY_SENTENCE);
        d.Escape();
    };
    const Told told{.card = kSoon};
    m_hive.SetDword(kConfigKey, "ValidityCheckSentence", 7);
    told.ShowAtNow({read});
    const std::string templateOwn = own;
    EXPECT_FALSE(templateOwn.empty());
    const std::pair<std::string, std::string> cases[] = {
        {"Call & ask.", "Call & ask."}, {"", templateOwn}, {std::string(260, 's'), templateOwn}};
    for (const auto& [value, shown] : cases) {
        m_hive.SetString(kConfigKey, "ValidityCheckSentence", value);
        told.ShowAtNow({read});
        EXPECT_EQ(own, shown);
    }
}

TEST_F(CardExpiryForm, DoesWithoutAnyOneControl) {
    std::map<int, int> heights;  // of the dialogs that tell of nothing expired
    for (const bool isExpired : {false, true}) {
        for (const int missing : kControls) {
            VKExpiryNotificationInfo info("Reader A", nullptr);
            Told{.card = isExpired ? kPast : kSoon, .certificates = {{"a", kSoon}}}.FillIn(info);
            Incomplete<NoticeAtNow> notice(missing, std::cref(info));
            const bool isMeasurable =
                missing != IDC_CARD_EXPIRY_DAYS && missing != IDC_CARD_EXPIRY_NEVER_AGAIN;
            const auto look = [&](Dialog& d) {
                const int height = PlacesOf(d.Handle())[0].Height();
                const int former = heights.emplace(missing, height).first->second;
                EXPECT_EQ(height != former, isExpired && isMeasurable) << missing;
                d.Cancel();
            };
            EXPECT_EQ(Open(notice, {look}), IDCANCEL) << missing;
        }
    }
    VKExpiryNotificationInfo info("Reader A", nullptr);
    Told{.card = kSoon, .certificates = {{"a", kPast}}}.FillIn(info);
    Incomplete<NoticeAtNow> notice(0, std::cref(info));
    const auto look = [](Dialog& d) {
        EXPECT_EQ(d.Text(IDCANCEL), "Cancel") << "the module has gone";
        EXPECT_EQ(Control::Of(CardLineOf(d.Handle())).strText, "");
        EXPECT_EQ(CellOf(d, 0, 1), "05/16/31") << "and no word behind it";
        d.Cancel();
    };
    EXPECT_EQ(Open(notice, {look}), IDCANCEL);
}

TEST_F(CardExpiryForm, ColumnsGrowWithTheResolution) {
    const EnlargedDialogs at(150);
    const auto look = [](Dialog& d) {
        for (const int width : {192, 150}) {
            EXPECT_EQ(d.Send(IDC_CARD_EXPIRY_LIST, LVM_GETCOLUMNWIDTH, width == 150),
                      width * 3 / 2);
        }
        d.Escape();
    };
    EXPECT_EQ((Told{.certificates = {{"a", kSoon}}}.ShowAtNow({look})), IDCANCEL);
}

}  // namespace
}  // namespace mvp::test
