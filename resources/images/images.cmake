# Every image the pages load: resource name, drawing, pixel size, the surface
# it sits on, and for state variants the colours swapped in the same drawing.
# Included from resources/CMakeLists.txt; drawings are relative to this folder.

orvella_image_group("Status bar")
# The charging animation cycles the six levels, so they share one outline.
orvella_image(png/history/battery@2x.png  png/history/battery.svg  64x32 ON page)
orvella_image(png/history/battery8@2x.png png/history/battery8.svg 64x32 ON page)
orvella_image(png/history/battery6@2x.png png/history/battery6.svg 64x32 ON page)
orvella_image(png/history/battery4@2x.png png/history/battery4.svg 64x32 ON page)
orvella_image(png/history/battery2@2x.png png/history/battery2.svg 64x32 ON page)
orvella_image(png/history/battery0@2x.png png/history/battery0.svg 64x32 ON page)
orvella_image(png/history/wifi@2x.png  png/history/wifi.svg  48x36 ON page)
orvella_image(png/history/wifi2@2x.png png/history/wifi2.svg 48x36 ON page)
orvella_image(png/history/wifi3@2x.png png/history/wifi3.svg 48x36 ON page)
orvella_image(png/history/wifi4@2x.png png/history/wifi4.svg 48x36 ON page)

orvella_image_group("Patient details")
orvella_image(png/mainpage/male@2x.png    png/mainpage/male.svg   120x120 ON page)
orvella_image(png/mainpage/male1@2x.png   png/mainpage/male.svg   120x120 ON page RECOLOR accent=grey)
orvella_image(png/mainpage/female@2x.png  png/mainpage/female.svg 120x120 ON page)
orvella_image(png/mainpage/female1@2x.png png/mainpage/female.svg 120x120 ON page RECOLOR accent=grey)

orvella_image_group("Camera")
orvella_image(png/flashon@2x.png     png/flashon.svg     96x96 ON page)
orvella_image(png/flashon_off@2x.png png/flashon_off.svg 96x96 ON page)
orvella_image(png/camera/shutter@2x.png png/camera/shutter.svg 96x96 ON page)

orvella_image_group("Tables and dialogs")
orvella_image(pic/checkon.jpg  pic/checkon.svg  40x40 ON panel)
orvella_image(pic/checkoff.jpg pic/checkoff.svg 40x40 ON panel)
# The table's signal bars are the status bar's drawings, centred on a taller cell.
orvella_image(pic/wifi_sig3.jpg png/history/wifi.svg  48x40 ON panel)
orvella_image(pic/wifi_sig2.jpg png/history/wifi2.svg 48x40 ON panel)
orvella_image(pic/wifi_sig1.jpg png/history/wifi3.svg 48x40 ON panel)
orvella_image(pic/wifi_sig0.jpg png/history/wifi4.svg 48x40 ON panel)
orvella_image(pic/wifi_lock.jpg   pic/wifi_lock.svg   40x40 ON panel)
orvella_image(pic/wifi_select.jpg pic/wifi_select.svg 40x40 ON panel)
orvella_image(pic/wifi_saved.jpg  pic/wifi_saved.svg  40x40 ON panel)
orvella_image(pic/pwdshow.jpg pic/pwdshow.svg 48x48 ON panel)
orvella_image(pic/pwdhide.jpg pic/pwdhide.svg 48x48 ON panel)
orvella_image(pic/update_new.jpg pic/update_new.svg 64x64 ON raised)

orvella_image_group("Menu bar")
foreach(item setup history camera power)
    orvella_image(png/menu/${item}@2x.png    png/menu/${item}.svg 64x64 ON panel)
    orvella_image(png/menu/${item}_on@2x.png png/menu/${item}.svg 64x64 ON panel RECOLOR grey=accent)
endforeach()

orvella_image_group("Navigation")
orvella_image(png/back@2x.png    png/back.svg    48x48 ON page)
orvella_image(png/chevron@2x.png png/chevron.svg 32x32 ON panel)
orvella_image(png/logo@2x.png    png/logo.svg    160x160 ON page)
orvella_image(png/nowifi@2x.png  png/nowifi.svg  200x200 ON panel)

orvella_image_group("Settings")
foreach(item wifi timezone sleep country referral param machineid update language email printer reset)
    orvella_image(png/setup/${item}@2x.png png/setup/${item}.svg 48x48 ON panel)
endforeach()
