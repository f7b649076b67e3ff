#pragma once
// Captions of the main window and its dialogs. Every container is created the first time
// it is read, so a form can read captions before (or without) a loaded language table.

#include <memory>

#include "lang/CaptionList.h"
#include "lang/MenuCaptions.h"
#include "lang/ToolbarCaptions.h"
#include "rt/CreatedOnFirstUse.h"

namespace lang {

class TableLangItem {
public:
    CaptionList& NewDataBase() const { return newDataBase_.get(); }
    void setNewDataBase(std::shared_ptr<CaptionList> v) { newDataBase_.set(std::move(v)); }
    CaptionList& Login() const { return login_.get(); }
    void setLogin(std::shared_ptr<CaptionList> v) { login_.set(std::move(v)); }
    CaptionList& AddField() const { return addField_.get(); }
    void setAddField(std::shared_ptr<CaptionList> v) { addField_.set(std::move(v)); }
    CaptionList& Common() const { return common_.get(); }
    void setCommon(std::shared_ptr<CaptionList> v) { common_.set(std::move(v)); }
    CaptionList& TableOptions() const { return tableOptions_.get(); }
    void setTableOptions(std::shared_ptr<CaptionList> v) { tableOptions_.set(std::move(v)); }
    ToolbarCaptions& ToolBar() const { return toolBar_.get(); }
    void setToolBar(std::shared_ptr<ToolbarCaptions> v) { toolBar_.set(std::move(v)); }
    MenuCaptions& Menu() const { return menu_.get(); }
    void setMenu(std::shared_ptr<MenuCaptions> v) { menu_.set(std::move(v)); }

private:
    rt::CreatedOnFirstUse<CaptionList> newDataBase_;
    rt::CreatedOnFirstUse<CaptionList> login_;
    rt::CreatedOnFirstUse<CaptionList> addField_;
    rt::CreatedOnFirstUse<CaptionList> common_;
    rt::CreatedOnFirstUse<CaptionList> tableOptions_;
    rt::CreatedOnFirstUse<ToolbarCaptions> toolBar_;
    rt::CreatedOnFirstUse<MenuCaptions> menu_;
};

}  // namespace lang
