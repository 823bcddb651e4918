// Which of these servers is a SharePoint server? Runs in cscript (with the DLL registered) and in velandoc-script:
//   cscript //nologo probe.js http://docs.example.test/ http://www.example.test/
try {
  var probe = new ActiveXObject("Velandoc.ServerCheck");
  for (var i = 0; i < WScript.Arguments.length; i++) {
    var url = WScript.Arguments(i);
    WScript.Echo(url + ": " + (probe.Check(url) ? "SharePoint server" : "no SharePoint server"));
  }
} catch (error) {
  WScript.Echo("error " + error.number + ": " + error.message);
  WScript.Quit(1);
}
WScript.Quit(0);
