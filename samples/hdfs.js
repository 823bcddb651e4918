// Puts a file into HDFS, looks at it there, brings its first lines and then all of it back.
// Runs in cscript (with the DLL registered) and in velandoc-script:
//   cscript //nologo hdfs.js http://namenode.example.test bob figures.csv /user/bob/figures.csv copy.csv
var CREATE_FOLDER = "755";
var CREATE_FILE = "640";
var PREVIEW_LINES = 3;

function folderOf(path) { return path.substring(0, path.lastIndexOf("/")); }

// The status comes as JSON; two of its values are enough here.
function status(client) {
  // Other operations leave theirs in Op.
  client.Op = "GETFILESTATUS";
  var text = client.GetText();
  client.Op = "OPEN";
  return /"length":(\d+)/.exec(text)[1] + " bytes, permissions " + /"permission":"(\d+)"/.exec(text)[1];
}

// What the server said, where it did not do what was asked.
function problem(client, error) {
  var connection = client.ConnectionError;
  var told = connection ? " (" + connection.HttpCode + " " + connection.Message + ")" : "";
  return "error: " + error.message + told;
}

var client = new ActiveXObject("Velantrica.HdfsClient");
try {
  var url = WScript.Arguments(0), user = WScript.Arguments(1);
  var local = WScript.Arguments(2), remote = WScript.Arguments(3), copy = WScript.Arguments(4);
  if (!client.VerifyServer(url, user)) throw new Error("no HDFS answers at " + url);
  WScript.Echo("name node:  " + client.BaseUrl);

  client.HdfsPath = folderOf(remote);
  if (!client.CreateFolder(CREATE_FOLDER)) throw new Error("the folder cannot be made");
  client.HdfsPath = remote;
  client.Upload(local, true, CREATE_FILE);
  WScript.Echo("uploaded:   " + remote + ", " + status(client));
  WScript.Echo("preview:    " + client.DownloadPreview(PREVIEW_LINES));
  WScript.Echo("downloaded: " + client.Download(false, copy));

  if (!client.Rename(remote + ".old")) throw new Error("the file cannot be renamed");
  client.HdfsPath = remote + ".old";
  if (!client.Delete()) throw new Error("the file cannot be deleted");
  WScript.Echo("deleted:    " + client.HdfsPath);
} catch (error) {
  WScript.Echo(problem(client, error));
  WScript.Quit(1);
}
WScript.Quit(0);
