// args: URL [N]: opens the document and shows its dialog N times, telling what each call gives.
var client = new ActiveXObject("Velandoc.Client");
var url = WScript.Arguments(0);
var times = WScript.Arguments.Length > 1 ? Number(WScript.Arguments(1)) : 1;
WScript.Echo("opened " + client.InitFromURL(url));
for (var i = 0; i < times; i++) WScript.Echo("edited " + client.EditFields());
