// A host in C#: shows the Add Files dialog and lists what the user chose.
using System;
using System.Runtime.InteropServices;
using System.Runtime.Serialization.Json;
using System.Text;
using System.Xml;
using System.Xml.Linq;

/// The functions of orvexcommon/orvex.h that this program uses. Texts are UTF-8 and end with a zero.
static class Orvex {
    const string Library = "OrvexCommon";
    enum Status { Ok = 0, Cancelled = 1 }

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    static extern Status orvex_show_add_files(IntPtr host, byte[] request, out IntPtr result);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    static extern IntPtr orvex_last_error();

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    static extern void orvex_free(IntPtr text);

    static byte[] Bytes(IntPtr text) {
        int length = 0;
        while (Marshal.ReadByte(text, length) != 0) {
            ++length;
        }
        var bytes = new byte[length];
        Marshal.Copy(text, bytes, 0, length);
        return bytes;
    }

    /// The record's results; null after Cancel.
    public static XElement AddFiles(string request) {
        IntPtr text;
        Status status = orvex_show_add_files(IntPtr.Zero, Encoding.UTF8.GetBytes(request + "\0"), out text);
        if (status == Status.Cancelled) {
            return null;
        }
        if (status != Status.Ok) {
            throw new Exception(status + ": " + Encoding.UTF8.GetString(Bytes(orvex_last_error())));
        }
        try {
            return XElement.Load(JsonReaderWriterFactory.CreateJsonReader(Bytes(text), XmlDictionaryReaderQuotas.Max));
        } finally {
            orvex_free(text);
        }
    }
}

static class Program {
    /// Name of a member; one that is no name in XML is kept in an attribute.
    static string NameOf(XElement member) {
        return (string)member.Attribute("item") ?? member.Name.LocalName;
    }

    static int Main() {
        Console.OutputEncoding = new UTF8Encoding(false);
        try {
            XElement chosen = Orvex.AddFiles("{\"existingLasLayers\": {\"Survey 2019\": \"\"}}");
            if (chosen == null) {
                Console.WriteLine("Cancelled, or nothing was chosen");
                return 0;
            }
            foreach (XElement details in chosen.Element("lasFileDetails").Elements()) {
                Console.WriteLine("{0}: {1} points", NameOf(details), details.Element("las").Element("pointCount").Value);
            }
            return 0;
        } catch (Exception error) {
            Console.Error.WriteLine(error.Message);
            return 1;
        }
    }
}
