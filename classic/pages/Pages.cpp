#include "classic/pages/Pages.h"

#include "classic/http/RequestTarget.h"
#include "classic/pages/Markup.h"

namespace {

// Until the owner names them.
constexpr auto makersSite = "https://quillon.example/";
constexpr auto javaDownload = "https://java.example/";

constexpr auto clientArchive = "QuillonClient.jar";

constexpr int clientPageSize = 800; ///< bytes, usually enough
constexpr int formPageSize = 1024;

constexpr auto scriptStart = R"(<script type="text/javascript">)";
constexpr auto scriptEnd = "</script>";

constexpr auto checkVal =
    "function checkVal(val, msg){if(val == ''){alert(msg);return false;}return true;}";

constexpr auto checkFolder =
    "function checkFolder(item){if(item.checked){if(!confirm('Delete all files in folder ' + "
    "item.value + '?')){item.checked = false;return false;}}return true;}";

constexpr auto read_value = "function read_value(){"
                            "if(document.fl.d[0] == null) return checkFolder(document.fl.d);"
                            "for(var i=0; i < document.fl.d.length; i++)"
                            "{if(!checkFolder(document.fl.d[i]))return false;}return true;}";

constexpr auto resize =
    "function resize(){var w,h;var mw=1600,mh=1200;"
    R"(if (navigator.appName.indexOf("Microsoft") != -1))"
    "{w=document.body.clientWidth;h=document.body.clientHeight;}"
    "else{w=window.innerWidth;h=window.innerHeight;}"
    "if(w>mw)w=mw;if(h>mh)h=mh;h=h-40;document.mc.setSize(w,h);window.scroll(0,0);}"
    "window.onResize=resize;window.onLoad=resize;document.body.style.overflow='hidden';";

constexpr auto uploadForm =
    R"(<form method="POST" name="up" enctype="multipart/form-data">)"
    R"(<table border="0" cellspacing="5"><tr><th align="right">File:</th><td align="left">)"
    R"(<input type="file" name="f" size="40">)"
    "</td></tr></table>"
    R"(<input type="submit" name="submit" value="Send" )"
    R"(onclick="return checkVal(up.f.value, 'No selected file');">&nbsp;&nbsp;&nbsp;)";

constexpr auto createForm =
    R"html(<form method="POST" name="cf" onsubmit="return checkVal(cf.f.value, 'No folder name')">)html"
    R"(<table border="0" cellspacing="5"><tr><th align="right">New folder name:</th>)"
    R"(<td align="left">)"
    R"(<input type="text" name="f" size="40">)"
    "</td></tr></table>"
    R"(<input type="submit" name="submit" value="Create">&nbsp;&nbsp;&nbsp;)"
    R"(<input type="hidden" name="a" value="cfd">)";

constexpr auto backButton =
    R"(<input type="button" value="Back" onclick="javascript: history.go(-1);"/>)";

constexpr auto appletBody =
    R"html(</head><body onResize="resize()" onLoad="resize()" topmargin="0" leftmargin="0" )html"
    R"(marginwidth="0" marginheight="0">)";

constexpr auto appletStart =
    R"("><-Back</a>&nbsp;&nbsp;&nbsp;File manager for copy selected files and folders<br>)"
    R"(<APPLET name="mc" archive=")";
constexpr auto appletEnd = R"(" code="quillonclient/QuillonApplet.class" width=1600 height=1200>)";

struct FormPage
{
    const char *title;
    const char *heading;
    const char *preposition; ///< between the heading and the folder
    const char *form;
};

constexpr FormPage uploadFormPage{ "Upload", "Send file", " to ", uploadForm };
constexpr FormPage createFormPage{ "Create Folder", "Create new folder", " in ", createForm };

bool isRoot(const QByteArray &path)
{
    return path.size() <= 1;
}

QByteArray formPage(const FormPage &content, const QByteArray &path, bool picture)
{
    QByteArray page;
    page.reserve(formPageSize + int(path.size()));
    addHead(&page);
    page.append("<title>").append(content.title).append("</title>");
    page.append(scriptStart).append(checkVal).append(scriptEnd).append("</head>");
    addBody(&page, picture);
    page.append("<center><h2>").append(content.heading);
    if (!isRoot(path)) {
        page.append(content.preposition);
        addEscaped(&page, path);
    }
    page.append("</h2>").append(content.form).append(backButton);
    page.append("</form></center></body></html>");
    return page;
}

} // namespace

QByteArray uploadPage(const QByteArray &path, bool picture)
{
    return formPage(uploadFormPage, path, picture);
}

QByteArray createPage(const QByteArray &path, bool picture)
{
    return formPage(createFormPage, path, picture);
}

QByteArray appletPage(ClientLaunch launch)
{
    QByteArray &path = launch.path.replace('+', ' ');
    QByteArray page;
    page.reserve(clientPageSize);
    addHead(&page);
    page.append(appletBody);
    page.append(scriptStart).append(resize).append(scriptEnd).append(R"(<a href=")");
    addLocalLink(&page, path);
    page.append(appletStart).append(iconUrl).append(clientArchive).append(appletEnd);
    addParam(&page, "Cookie", QByteArray::number(launch.session));
    if (!isRoot(path))
        addParam(&page, "Path", path.endsWith('/') ? path : path + '/');
    if (!launch.credentials.isEmpty())
        addParam(&page, "Aut", launch.credentials);
    page.append("Applet not supported in this browser.</APPLET></body></html>");
    return page;
}

QByteArray launchDescriptor(const QByteArray &baseUrl, const ClientLaunch &launch)
{
    QByteArray page;
    page.reserve(clientPageSize);
    page.append(R"(<?xml version="1.0" encoding="utf-8"?><jnlp spec="1.0+" codebase=")");
    addEscaped(&page, baseUrl);
    page.append(R"("><information><title>Quillon</title><vendor>Tessaroy, Inc.</vendor>)");
    page.append(R"(<homepage href=")").append(makersSite).append(R"("/>)");
    page.append("<description>Quillon client filemanager</description></information>");
    page.append("<security><all-permissions/></security><resources>");
    page.append(R"(<j2se version="1.5+" href=")").append(javaDownload);
    page.append(R"(" java-vm-args="-client"><property name="http.keepAlive" value="true"/>)");
    page.append(R"(</j2se><jar href=")").append(iconUrl).append(clientArchive);
    page.append(R"(" main="true" download="eager" />)");
    page.append("</resources>");
    page.append(R"(<application-desc name="Quillon" main-class="quillonclient.QuillonApplet">)");
    addArg(&page, "URL", baseUrl);
    addArg(&page, "Cookie", QByteArray::number(launch.session));
    // Unlike the applet, the launched client has always been given one more slash.
    if (!isRoot(launch.path))
        addArg(&page, "Path", launch.path + '/');
    if (!launch.credentials.isEmpty())
        addArg(&page, "Aut", launch.credentials);
    page.append("</application-desc></jnlp>");
    return page;
}

QByteArray deleteScripts()
{
    return QByteArray(scriptStart).append(checkFolder).append(read_value).append(scriptEnd);
}
