// Rasters that name servers, databases and pipes: describing them asks none, and waits for none.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <system_error>

#include "raster/RasterRow.h"
#include "raster/testing/GeoTiff.h"
#include "raster/testing/TiffBytes.h"
#include "support/GdalRaii.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;
using testing::TemporaryFolder;
using testing::TiffBytes;

/// A server on this machine that answers nothing.
class SilentServer {
  public:
    SilentServer() : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        if (bind(socket_, any, size) != 0 || listen(socket_, 100) != 0 ||
            getsockname(socket_, any, &size) != 0) {
            throw std::system_error(errno, std::generic_category());
        }
        port_ = ntohs(address.sin_port);
    }
    ~SilentServer() { close(socket_); }
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;

    std::string Port() const { return std::to_string(port_); }
    bool WasAsked() const {
        pollfd ready{socket_, POLLIN, 0};
        return poll(&ready, 1, 0) != 0;
    }

  private:
    const int socket_;
    int port_ = 0;
};

std::string Replaced(std::string text, const std::string& word, const std::string& by) {
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + by.size())) {
        text.replace(at, word.size(), by);
    }
    return text;
}

std::string Vrt(const std::string& attributes, const std::string& content) {
    return "<VRTDataset rasterXSize=\"20\" rasterYSize=\"20\" " + attributes + ">" + content +
           "</VRTDataset>";
}

std::string Band(const std::string& content, const std::string& attributes = "") {
    return "<VRTRasterBand dataType=\"Byte\" band=\"1\" " + attributes + ">" + content + "</VRTRasterBand>";
}

std::string Mosaic(const std::string& source) {
    return Vrt("", Band("<SimpleSource><SourceFilename>" + source +
                        "</SourceFilename><SourceBand>1</SourceBand></SimpleSource>"));
}

std::string Warped(const std::string& source) {
    return Vrt("subClass=\"VRTWarpedDataset\"",
               "<BlockXSize>9</BlockXSize><BlockYSize>9</BlockYSize><GDALWarpOptions><SourceDataset>" +
                   source + "</SourceDataset></GDALWarpOptions>" +
                   Band("", "subClass=\"VRTWarpedRasterBand\""));
}

std::string Wms() {
    return "<GDAL_WMS><Service name=\"WMS\"><ServerUrl>http://HOST/?</ServerUrl></Service><DataWindow>"
           "<SizeX>20</SizeX><SizeY>20</SizeY></DataWindow></GDAL_WMS>";
}

/// The document in which any raster may keep metadata.
std::string Pam(const std::string& overviews) {
    return "<PAMDataset><Metadata domain=\"OVERVIEWS\"><MDI key=\"OVERVIEW_FILE\">" + overviews +
           "</MDI></Metadata></PAMDataset>";
}

/// A TIFF whose own metadata names an overview file.
std::string TiffNaming(const std::string& overviews) {
    const std::string xml = "<GDALMetadata><Item name=\"OVERVIEW_FILE\" domain=\"OVERVIEWS\">" + overviews +
                            "</Item></GDALMetadata>";
    std::vector<std::uint64_t> text(xml.begin(), xml.end());
    text.push_back(0);
    return TiffBytes().Image(1, 1, 8, 1).Tag(42112, 1, text).Build();
}

std::string Pixel() {
    return TiffBytes().Image(1, 1, 8, 1).Build();
}

struct Route {
    const char* about;
    std::string raster;
    std::wstring beside{};  ///< another file, and what it holds
    std::string content{};
};

// HOST stands for the server.
std::vector<Route> Routes() {
    std::vector<Route> routes{
        {"overviews named by a sidecar", Pixel(), L"a.tif.aux.xml", Pam("http://HOST/a.tif")},
        {"overviews through a file system", Pixel(), L"a.tif.aux.xml", Pam("/vsicurl/http://HOST/a.tif")},
        {"overviews through a streaming one", Pixel(), L"a.tif.aux.xml",
         Pam("/vsicurl_streaming/http://HOST/a.tif")},
        {"overviews named by the raster", TiffNaming("http://HOST/a.tif")},
        {"overviews that are a service", Pixel(), L"a.tif.ovr", Wms()},
        {"overviews computed from a server", Pixel(), L"a.tif.ovr", Warped("http://HOST/a.tif")},
        {"overviews that name overviews", Pixel(), L"a.tif.ovr", TiffNaming("http://HOST/a.tif")},
        {"a mask that is a service", Pixel(), L"a.tif.msk", Wms()},
        {"a mask computed from a server", Pixel(), L"a.tif.msk", Warped("/vsicurl/http://HOST/a.tif")},
        {"an .aux file that is more", Pixel(), L"a.aux", "EHFA_HEADER_TAG" + Warped("http://HOST/a.tif")},
        {"a CRS by its address", Pixel(), L"a.tif.aux.xml",
         "<PAMDataset><SRS>http://HOST/crs</SRS></PAMDataset>"},
        {"a CRS of a mosaic", Vrt("", "<SRS>http://HOST/crs</SRS>" + Band(""))},
        {"a service", Wms()},
        {"a computed raster", Warped("http://HOST/w.tif")},
        {"one behind a comment", "<!-- <VRTDataset> -->" + Warped("http://HOST/w.tif")},
        {"bands in a file of their own",
         Vrt("", Band("<SourceFilename>/vsicurl_streaming/http://HOST/a</SourceFilename>",
                      "subClass=\"VRTRawRasterBand\""))},
        {"a sharpened raster",
         Vrt("subClass=\"VRTPansharpenedDataset\"",
             "<PansharpeningOptions><PanchroBand><SourceFilename>http://HOST/p.tif</SourceFilename>"
             "<SourceBand>1</SourceBand></PanchroBand></PansharpeningOptions>")},
        {"overviews of a mosaic's band",
         Vrt("", Band("<Overview><SourceFilename>http://HOST/o.tif</SourceFilename><SourceBand>1</SourceBand>"
                      "</Overview>"))},
    };
    for (const char* const source :
         {"http://HOST/a.tif", "/vsicurl/http://HOST/a.tif", "/vsicurl_streaming/http://HOST/a.tif",
          "PG:host=127.0.0.1 port=PORT dbname=x", "WCS:http://HOST/?version=1.0.0&amp;coverage=a",
          "WMS:http://HOST/?SERVICE=WMS", "WMTS:http://HOST/", "OGCAPI:http://HOST/",
          "NGW:http://HOST/resource/1", "DAAS:http://HOST/a",
          "PLMosaic:", "/vsizip//vsicurl/http://HOST/a.zip/a.tif"}) {
        routes.push_back({source, Mosaic(source)});
    }
    return routes;
}

TEST(RasterReach, NoServerIsAsked) {
    const SilentServer server;
    for (const Route& route : Routes()) {
        const TemporaryFolder folder;
        const auto filled = [&](const std::string& text) {
            return Replaced(Replaced(text, "HOST", "127.0.0.1:" + server.Port()), "PORT", server.Port());
        };
        const std::wstring path = folder.Write(L"a.tif", filled(route.raster));
        if (!route.beside.empty()) {
            folder.Write(route.beside, filled(route.content));
        }
        const RasterRow row = InspectRasterFile(path, RasterUse::Image);
        ASSERT_FALSE(server.WasAsked()) << route.about;
        EXPECT_FALSE(row.summary.empty()) << route.about;
    }
}

TEST(RasterReach, NoServerIsAskedByWayOfAnAuxFile) {
    const SilentServer server;
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a.tif", Pixel());
    const GdalDataset raster(GDALOpen(ToUtf8(path).c_str(), GA_ReadOnly));
    const std::string aux = ToUtf8(folder.Name(L"a.aux"));
    ASSERT_TRUE(GdalDataset(GDALCreateCopy(GDALGetDriverByName("HFA"), aux.c_str(), raster.get(), FALSE,
                                           nullptr, nullptr, nullptr)));
    folder.Write(L"a.aux.aux.xml", Pam("http://127.0.0.1:" + server.Port() + "/a.tif"));
    EXPECT_THAT(ToUtf8(InspectRasterFile(path, RasterUse::Image).summary), HasSubstr("overview file"));
    EXPECT_FALSE(server.WasAsked());
}

TEST(RasterReach, NoPipeIsWaitedFor) {
    const TemporaryFolder folder;
    const auto pipe = [&](const std::wstring& name) {
        EXPECT_EQ(mkfifo(ToUtf8(folder.Name(name)).c_str(), 0600), 0);
        return ToUtf8(folder.Name(name));
    };
    const std::wstring path = folder.Write(L"a.tif", Pixel());
    for (const wchar_t* const name : {L"a.tif.ovr", L"a.tif.msk", L"a.tif.aux.xml", L"a.aux", L"a.tfw",
                                      L"a.wld", L"a.tab", L"a.imd", L"a_rpc.txt"}) {
        pipe(name);
    }
    EXPECT_TRUE(InspectRasterFile(path, RasterUse::Image).loadable);
    const std::wstring overviews = folder.Write(L"b.tif", TiffNaming(pipe(L"o")));
    EXPECT_THAT(ToUtf8(InspectRasterFile(overviews, RasterUse::Image).summary), HasSubstr("overview file"));
    const std::wstring mosaic = folder.Write(L"c.tif", Mosaic(pipe(L"s.tif")));
    EXPECT_TRUE(InspectRasterFile(mosaic, RasterUse::Image).loadable);
    const std::wstring header = folder.Write(L"d.bil", std::string(4, '\1'));
    pipe(L"d.hdr");
    EXPECT_FALSE(InspectRasterFile(header, RasterUse::Image).loadable);
}

}  // namespace
}  // namespace orvex
