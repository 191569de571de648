// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Search URL: one web page, scanned as the server sends it. An invisible viewer also gets each address; it
// loads nothing.

#include "app/Window1.h"

#include "framework/Application.h"
#include "framework/dialogs/dialogs.h"
#include "framework/net/URLConnection.h"
#include "framework/regex/RegEx.h"
#include "framework/strings.h"

namespace quilvane {

void Window1::importBtn_Action()
{
    RegEx insecure;
    insecure.setSearchPattern("http://");
    insecure.setReplacementPattern("https://");
    // Anywhere in the field, but only the first: a later one may belong to a query.
    if (!urlField.Text().empty() && insecure.Search(urlField.Text()))
        urlField.setText(insecure.Replace(urlField.Text()));
    searchStop.setValue(false);
    if (urlField.Text().empty())
        MsgBox("Please insert a URL to search.");
    else
        doHTML();
    EnableMenuItems();
}

void Window1::doHTML()
{
    rCounter = 0;
    results.setText("");
    if (urlField.Text().empty())
        MsgBox("Please enter a valid URL.");
    else
        TextField1.setText(URLConnection().SendSync("GET", urlField.Text(), 0));
    addMatchesToList(TextField1.Text(), Counting::On);
    TextField1.setText("");
    urlField.setText("");
    results.setVisible(true);
    showFinishMessage(results);
    checkDuplicates();
    // Unlike the total of the other sources, this one is in the plural also for one row, and is shown also
    // for none.
    results.setText("Total: " + Str(Listbox1.ListCount()) + " entries.");
}

void Window1::urlField_TextChange()
{
    HTMLViewer1.LoadURL(urlField.Text());
    if (!urlField.Text().empty())
        EnableMenuItems();
}

bool Window1::urlField_KeyDown(const std::string& key)
{
    const bool isReturn = key == Chr(13) || key == Chr(3);
    if (isReturn)
        importBtn.Push();
    return isReturn;
}

void Window1::HTMLViewer1_DocumentComplete(const std::string&)
{
    TextField1.setText(HTMLViewer1.EvaluateJavaScriptMBS("document.body.innerText"));
}

void Window1::HTMLViewer1_DocumentProgressChanged(const std::string&, int)
{
}

} // namespace quilvane
