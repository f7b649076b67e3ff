#pragma once
// The main window's menu tree and toolbar as designed: every item in menu order with its
// level, design caption (the language table replaces it), shortcut and language key (the
// key under which the language table's Menu part supplies the caption). The numbering
// of the keys is the program's own and is kept as it is: separators before 0,4 and 0,8
// take a number but the one before mnuDBReopen does not, the Table menu's separator takes
// none (2,3 is mnuDelTable), the Calculate menu's takes one (3,14 is mnuInsertResult and
// 3,13 names nothing). Separators are captioned "-".

namespace ui {

struct MenuDesign {
    const char* name;
    int level;
    const char* caption;
    const char* shortcut;
    const char* key;
};

inline constexpr MenuDesign kMainMenu[] = {
    {"mnuFile", 1, "&Файл", "", "0"},
    {"mnuCreate", 2, "Создать", "", "0,0"},
    {"mnuDataBaseCreate", 3, "База данных", "Ctrl+N", "0,0,0"},
    {"mnuTableCreate", 3, "Таблица", "Shift+Ctrl+F4", "0,0,1"},
    {"mnuOpenIt", 2, "&Открыть", "", "0,1"},
    {"mnuOpenDataBase", 3, "База данных", "", "0,1,0"},
    {"mnuOpen", 3, "Таблица", "Ctrl+O", "0,1,1"},
    {"mnuPicOpen", 3, "Рисунок", "Ctrl+P", "0,1,2"},
    {"mnuSave", 2, "Сохранить", "Ctrl+S", "0,2"},
    {"mnuR2", 2, "-", "", ""},
    {"mnuOpenAs", 2, "Открыть как", "", "0,4"},
    {"mnuOpenHTML", 3, "HTML", "", "0,4,0"},
    {"mnuOpenXML", 3, "XML", "", "0,4,1"},
    {"mnuSaveAs", 2, "Сохранить как...", "", "0,5"},
    {"mnuSaveHTML", 3, "HTML", "", "0,5,0"},
    {"mnuSaveXML", 3, "XML", "", "0,5,1"},
    {"mnuR9", 2, "-", "", ""},
    {"mnuDBReopen", 2, "Использованные базы данных", "", "0,6"},
    {"mnuDBReopenFile", 3, "FILE", "", ""},
    {"mnuR7", 2, "-", "", ""},
    {"mnuExit", 2, "Выход", "", "0,8"},
    {"mnuEdit", 1, "Пр&авка", "", "1"},
    {"mnuCopy", 2, "Копировать", "Ctrl+C", "1,0"},
    {"mnuTable", 1, "&Таблица", "", "2"},
    {"mnuStrikeIn", 2, "Строка", "", "2,0"},
    {"mnuStrikeAdd", 3, "Добавить", "Ctrl+Ins", "2,0,0"},
    {"mnuStrikeDelete", 3, "Удалить", "Shift+Del", "2,0,1"},
    {"mnuColumnIn", 2, "Столбец", "", "2,1"},
    {"mnuColumnAdd", 3, "Добавить", "", "2,1,0"},
    {"mnuColumnDelete", 3, "Удалить", "", "2,1,1"},
    {"mnuColumnRename", 3, "Переименовать", "", "2,1,2"},
    {"mnuSelect", 2, "Выделить", "", "2,2"},
    {"mnuSelString", 3, "Всю строку", "Shift+F1", "2,2,0"},
    {"mnuSelColumn", 3, "Весь столбец", "Shift+F2", "2,2,1"},
    {"mnuR8", 2, "-", "", ""},
    {"mnuDelTable", 2, "Удалить", "", "2,3"},
    {"mnuEditView", 2, "Режим правки", "F4", "2,4"},
    {"mnuStatisics", 2, "Статистика", "", "2,5"},
    {"mnuCalc", 1, "Вычислить", "", "3"},
    {"mnuSumm", 2, "Суммирование", "Ctrl+F1", "3,0"},
    {"mnuMuch", 2, "Перемножение", "Ctrl+F2", "3,1"},
    {"mnuMid", 2, "Среднее", "Ctrl+F3", "3,2"},
    {"mnuMax", 2, "Наибольшее", "Ctrl+F4", "3,3"},
    {"mnuMin", 2, "Наименьшее", "Ctrl+F5", "3,4"},
    {"mnuMidGeo", 2, "Среднее геометрическое", "Ctrl+F6", "3,5"},
    {"mnuMultunomial", 2, "Мультиномиал", "Ctrl+F7", "3,6"},
    {"mnuMinDevCrat", 2, "Наименьшее общее кратное", "Ctrl+F8", "3,7"},
    {"mnuMaxCrat", 2, "Набольший общий делитель", "Ctrl+F9", "3,8"},
    {"mnuDivisor", 2, "Погрешность - среднее отклонение", "Ctrl+F12", "3,9"},
    {"mnuSquareDivisor", 2, "Квадратичное отклонение", "Shift+Ctrl+F1", "3,10"},
    {"mnuMedian", 2, "Медиана чисел", "Shift+Ctrl+F2", "3,11"},
    {"mnuMidHarmonic", 2, "Среднее гармоническое данных", "Shift+Ctrl+F3", "3,12"},
    {"mnuR4", 2, "-", "", ""},
    {"mnuInsertResult", 2, "Вставить результат в ячейку", "Ctrl+R", "3,14"},
    {"mnuTools", 1, "Сервис", "", "4"},
    {"mnuNumberType", 2, "Тип числа...", "Ctrl+F", "4,0"},
    {"mnuOptionsTable", 2, "Настройки", "Ctrl+T", "4,1"},
    {"mnuHelp", 1, "Помо&щь", "", "5"},
    {"mnuCHM", 2, "Вызов справки", "F1", "5,0"},
    {"mnuAbout", 2, "О &программе", "", "5,1"},
};

// The toolbar's buttons in order, by key; each shows share/icons/toolbar/<key>.svg.
inline constexpr const char* kToolbarKeys[] = {
    "NewDB", "NewTable", "OpenDB", "Open", "Save", "Copy", "TableHZ",
    "TableVR", "InsertRIAD", "DelStroke", "DelColumn", "InsertRES", "EditView", "Stat",
};

// What DataBaseOpen switches, in the order it switches them; everything else (creating
// and opening a database, the Tools and Help menus, Exit) stays enabled always.
inline constexpr const char* kDatabaseMenuItems[] = {
    "mnuOpenAs", "mnuSaveAs", "mnuSave", "mnuOpen", "mnuPicOpen", "mnuCopy", "mnuTable", "mnuCalc", "mnuTableCreate",
};
inline constexpr const char* kDatabaseButtons[] = {
    "NewTable", "Open", "Save", "Copy", "TableHZ", "TableVR", "InsertRIAD", "DelStroke", "DelColumn", "InsertRES",
    "EditView", "Stat",
};

}  // namespace ui
