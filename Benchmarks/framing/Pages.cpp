#include "Pages.h"

namespace zento::bench {

namespace {

constexpr const char* kStyle = R"(<style>
*{box-sizing:border-box}body{margin:0;font:15px/1.5 sans-serif;background:#f3f4f7;color:#222}
header{height:64px;background:#fff;border-bottom:1px solid #e3e5ea;display:flex;align-items:center;padding:0 24px;gap:24px}
header input{width:420px;height:36px;border:1px solid #d4d7de;border-radius:8px;padding:0 12px}
aside{position:absolute;top:64px;left:0;width:240px;bottom:0;background:#1f2433;color:#cdd3e4;padding:16px}
aside div{padding:10px 14px;border-radius:6px}
main{position:absolute;top:64px;left:240px;right:0;bottom:0;padding:24px;display:grid;grid-template-columns:1fr 1fr 1fr;gap:24px;grid-auto-rows:min-content}
.card{background:#fff;border:1px solid #e3e5ea;border-radius:10px;padding:20px;min-height:180px}
.flat{border:none}.soft{border:none;box-shadow:0 2px 10px #0002}.deep{background:#263047;color:#eee;border:none}
.grad{background:linear-gradient(120deg,#6a5af9,#d66efd);color:#fff;border:none}.wide{grid-column:span 2}
button{height:38px;padding:0 18px;border:none;border-radius:8px;background:#4f6df5;color:#fff;font-size:15px}
button.s{background:#e9ebf2;color:#222}
table{width:100%;border-collapse:collapse}td,th{border-bottom:1px solid #e8eaf0;padding:9px 6px;text-align:left}
textarea{width:100%;height:180px;border:1px solid #cfd3dc;border-radius:8px;padding:10px}
dialog{position:absolute;left:640px;top:420px;margin:0;width:520px;height:300px;border:none;background:#fff;border-radius:14px;box-shadow:0 18px 60px #0006;padding:26px}
</style>)";

constexpr const char* kDark = R"(<style>
body{background:#14161d}.card:not(.grad){background:#1d2029;color:#dde;border-color:#2b2f3b}
</style>)";

constexpr const char* kBody = R"(
<header><b>Harbour</b><input placeholder=Search><button>New invoice</button></header>
<aside role=group aria-label=Places><div>Overview</div><div>Invoices</div><div>Clients</div></aside>
<main>
<div class=card role=group aria-label=Balance><h3>Balance</h3><p>12,430.00 EUR available</p><button>Withdraw</button></div>
<div class="card flat" role=group aria-label=Open><h3>Open invoices</h3><p>Seven wait for payment, two are late.</p><button class=s>Remind</button></div>
<div class="card soft" role=group aria-label=Customers><h3>Customers</h3><p>Forty-one active this month.</p><button>Add</button> <button class=s>Import</button></div>
<div class="card wide" role=group aria-label=Latest><h3>Latest</h3><table><tr><th>No<th>Client<th>Amount<tr><td>1041<td>Miller<td>420.00<tr><td>1042<td>North Bay<td>1,250.00<tr><td>1043<td>Okafor Ltd<td>90.50</table></div>
<div class="card deep" role=group aria-label=Plan><h3>Plan</h3><p>Business, renews in May.</p><button>Change plan</button></div>
<div class=card role=group aria-label=Note><h3>Note</h3><textarea>Remember to call the bank about the transfer.</textarea></div>
<div class="card grad" role=group aria-label=Further><h3>Go further</h3><p>Automatic reminders save an hour a week.</p><button class=s>Try it</button></div>
</main>)";

constexpr const char* kDialog = R"(
<dialog open aria-label=Send><h2>Send invoice</h2><p>Miller gets it by mail.</p><button>Send</button> <button class=s>Cancel</button></dialog>)";

} // namespace

std::string page(PageKind kind)
{
    std::string html = "<!doctype html><meta charset=utf-8><title>Harbour</title>";
    html += kStyle;
    if (kind == PageKind::Dark)
        html += kDark;
    html += kBody;
    if (kind == PageKind::Dialog)
        html += kDialog;
    return html;
}

std::string form()
{
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0"><class>Form</class><widget class="QWidget" name="Form">
<property name="geometry"><rect><x>0</x><y>0</y><width>480</width><height>320</height></rect></property>
<property name="windowTitle"><string>Form</string></property>
<layout class="QVBoxLayout"><item><widget class="QGroupBox" name="address">
<property name="title"><string>Address</string></property>
<layout class="QVBoxLayout"><item><widget class="QLineEdit" name="street"/></item>
<item><widget class="QLineEdit" name="town"/></item></layout></widget></item>
<item><widget class="QPushButton" name="send"><property name="text"><string>Send</string></property>
</widget></item></layout></widget></ui>
)";
}

} // namespace zento::bench
