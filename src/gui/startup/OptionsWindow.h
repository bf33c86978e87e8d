// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "OptionsControls.h"
#include "platform/Services.h"

#include <QWidget>
#include <memory>

class BrowserWindow;
struct BrowserFlavour;

// The start-up window: says whether the program runs as administrator and opens one of the two browsers.
// It owns the browsers it opens; each is created on first use and shown again as it stands afterwards.
class OptionsWindow : public QWidget
{
    Q_OBJECT
public:
    explicit OptionsWindow(const Services& services);
    ~OptionsWindow() override;

    // Runs the load step the first time (the administrator check, which may end the program) and shows the
    // window unless the program was ended.
    void start();

    const OptionsControls& controls() const { return m_ui; }
    BrowserWindow* shortBrowser() const { return m_shortBrowser.get(); }
    BrowserWindow* longBrowser() const { return m_longBrowser.get(); }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildControls();
    bool Form_Load();
    void Option1_Click();
    void OptionSelect_Click();
    void Image1_Click();
    void openBrowser(const BrowserFlavour& flavour, std::unique_ptr<BrowserWindow>& browser);

    Services m_services;
    OptionsControls m_ui;
    bool m_loaded = false;
    std::unique_ptr<BrowserWindow> m_shortBrowser;
    std::unique_ptr<BrowserWindow> m_longBrowser;
};
