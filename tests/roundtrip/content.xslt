<?xml version="1.0"?>
<!-- Copies a document without its comments and processing instructions. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:template match="@*|node()">
    <xsl:copy><xsl:apply-templates select="@*|node()"/></xsl:copy>
  </xsl:template>
  <xsl:template match="comment()|processing-instruction()"/>
</xsl:stylesheet>
