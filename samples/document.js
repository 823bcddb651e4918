// Opens a document of a SharePoint library, tells what is known of it, checks it out and in again.
// Runs in cscript (with the DLL registered) and in velandoc-script:
//   cscript //nologo document.js http://docs.example.test/sites/a/Shared%20Documents/b.xlsx "a comment"
var MAJOR_VERSION = 1;
var STATUS = { "-1": "no document is open", "0": "nobody holds it", "1": "you hold it", "2": "somebody else holds it" };

function open(url) {
  var client = new ActiveXObject("Velandoc.Client");
  if (!client.InitFromURL(url)) throw new Error("the server does not know who you are: " + url);
  // An open that found no document is a success without a document.
  if (client.DocID === "") throw new Error("no such document: " + url);
  return client;
}

// An OLE date counts days from 1899-12-30; scripts count milliseconds from 1970, 25,569 days later.
function utc(days) {
  function two(number) { return (number < 10 ? "0" : "") + number; }
  var date = new Date(Math.round((days - 25569) * 86400) * 1000);
  return date.getUTCFullYear() + "-" + two(date.getUTCMonth() + 1) + "-" + two(date.getUTCDate()) + " " +
    two(date.getUTCHours()) + ":" + two(date.getUTCMinutes()) + ":" + two(date.getUTCSeconds()) + " UTC";
}

function modified(client) {
  // Times that the server writes with type letters are not read: then the property fails.
  try {
    return utc(client.ModifiedTimeUTCOA);
  } catch (error) {
    return "not known";
  }
}

// Every answer is a snapshot of the open, so each state is asked of an object of its own.
function tellStatus(when, url) {
  var client = open(url);
  var holder = client.SharePointCheckoutUser;
  WScript.Echo(when + ": " + STATUS[client.GetCheckOutStatus()] + (holder === "" ? "" : " (" + holder + ")"));
}

try {
  var url = WScript.Arguments(0);
  var comment = WScript.Arguments.length > 1 ? WScript.Arguments(1) : "";
  var client = open(url);
  WScript.Echo("URL:           " + client.URL);
  WScript.Echo("web:           " + client.WebURL);
  WScript.Echo("list:          " + client.ListID);
  WScript.Echo("content type:  " + client.ContentTypeID);
  WScript.Echo("document:      " + client.DocID);
  WScript.Echo("last modified: " + modified(client));
  WScript.Echo("has columns:   " + (client.HasFields() ? "yes" : "no"));
  WScript.Echo("empty columns: " + (client.HasUnfilledFields() ? "yes" : "no"));

  tellStatus("before", url);
  if (!client.CheckOut()) throw new Error("the check-out was refused");
  tellStatus("checked out", url);
  if (!client.CheckIn(comment, MAJOR_VERSION)) throw new Error("the check-in was refused");
  tellStatus("checked in", url);
} catch (error) {
  WScript.Echo("error: " + error.message);
  WScript.Quit(1);
}
WScript.Quit(0);
